// A program on the Wayland desktop of the tests: one window over the whole screen. It paints a mark
// where it sees the pointer, turns a patch to another colour at a click, adds a bar for a key, and
// prints what happened to it, a line each: "move X Y", "press X Y", "key", in points of its window.

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>

#include <cstdio>
#include <optional>

namespace {

class ClientWindow final : public QRasterWindow {
public:
    ClientWindow() { setCursor(Qt::ArrowCursor); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), QColor(16, 32, 64));
        painter.fillRect(0, 0, 80, 80, m_clicks % 2 == 0 ? Qt::red : Qt::green);
        painter.fillRect(100, 0, 10 * m_keys, 40, Qt::blue);
        if (m_pointer) {
            // As wide to the left as to the right: its middle is the pointer's place.
            painter.setRenderHint(QPainter::Antialiasing);
            painter.fillRect(QRectF(m_pointer->x() - 8, m_pointer->y() - 8, 16, 16), Qt::white);
        }
        if (!m_isShown) {
            m_isShown = true;
            tell("shown", {static_cast<double>(width()), static_cast<double>(height())});
        }
    }

    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Enter)
            point(*static_cast<QEnterEvent*>(event), "move");
        return QRasterWindow::event(event);
    }

    void mouseMoveEvent(QMouseEvent* event) override { point(*event, "move"); }

    void mousePressEvent(QMouseEvent* event) override
    {
        ++m_clicks;
        point(*event, "press");
    }

    void keyPressEvent(QKeyEvent*) override
    {
        ++m_keys;
        tell("key", m_pointer.value_or(QPointF()));
        update();
    }

private:
    void point(const QSinglePointEvent& event, const char* what)
    {
        m_pointer = event.position();
        tell(what, *m_pointer);
        update();
    }

    static void tell(const char* what, QPointF place)
    {
        std::printf("%s %.4f %.4f\n", what, place.x(), place.y());
        std::fflush(stdout);
    }

    std::optional<QPointF> m_pointer;
    int m_clicks = 0;
    int m_keys = 0;
    bool m_isShown = false;
};

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    ClientWindow window;
    window.showFullScreen();
    return QGuiApplication::exec();
}
