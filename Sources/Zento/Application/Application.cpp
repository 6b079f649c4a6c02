#include "Zento/Application/Application.h"

#include "Zento/Commands/Interruption.h"
#include "Zento/Desktop/ApplicationHost.h"
#include "Zento/Presentation/Windows.h"

#include <QGuiApplication>

#include <exception>
#include <iostream>

namespace zento {

int runApplication(int argc, char** argv)
{
    try {
        const Interruption interruption; // before Qt starts its threads
        const QGuiApplication application(argc, argv);
        QGuiApplication::setApplicationName(QStringLiteral("Zento"));
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Zento"));
        ApplicationHost host;
        if (!host.claim())
            return 0;
        const Windows windows(&host.model());
        host.start(interruption.token());
        return QGuiApplication::exec();
    } catch (const std::exception& error) {
        std::cerr << "zento: " << error.what() << '\n';
        return 1;
    }
}

} // namespace zento
