#pragma once

#include "WaylandStage/WaylandStage.h"

#include <string>

namespace zento::test {

/// Hands on the mouse and the keyboard of the desktop.
class WaylandUser {
public:
    explicit WaylandUser(WaylandStage& stage);
    ~WaylandUser();
    WaylandUser(const WaylandUser&) = delete;
    WaylandUser& operator=(const WaylandUser&) = delete;

    /// In pixels of the monitor; the compositor takes it to the nearest point.
    void move(double x, double y);
    void click(); // the left button
    void type(unsigned kernelCode);

private:
    void notify(const char* method, _GVariant* arguments);

    SessionBus m_bus; // what it made goes with the connection
    std::string m_session;
    std::string m_stream;
};

} // namespace zento::test
