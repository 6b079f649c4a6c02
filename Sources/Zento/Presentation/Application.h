#pragma once

class QQmlEngine;
class QObject;

namespace zento {

/// Opens the window and runs until it is closed for good. Returns the program's exit status.
int runApplication(int& argc, char** argv);

/// Makes an engine ready for the module "Zento": its import path, its image providers. `app` is
/// what the QML knows as `App`, the application's model; it must outlive the engine.
void prepareEngine(QQmlEngine& engine, QObject* app);

} // namespace zento
