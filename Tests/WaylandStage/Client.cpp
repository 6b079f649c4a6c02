// A program on the Wayland desktop of the tests. It paints a mark where it sees the pointer, turns
// a patch to another colour at a click, adds a bar for a key, and prints what happened to it, a
// line each: "move X Y", "press X Y", "key", in points of its window.
//
// Its window is over the whole screen. With sizes as arguments, "800x600", it has no border and the
// first of them; the key R gives it the next one, and "sized W H" is printed once it is painted.
// With "page" it shows a page that the wheel moves and nothing else: "wheel Y" is how far.

#include "WaylandStage/Page.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

class ClientWindow final : public QRasterWindow {
public:
    explicit ClientWindow(std::vector<QSize> sizes)
        : m_sizes(std::move(sizes))
    {
        setCursor(Qt::ArrowCursor);
        if (!m_sizes.empty()) {
            setFlag(Qt::FramelessWindowHint);
            resize(m_sizes.front());
        }
    }

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
        if (m_painted != size()) {
            tell(m_painted ? "sized" : "shown", QPointF(width(), height()));
            m_painted = size();
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

    void keyPressEvent(QKeyEvent* event) override
    {
        ++m_keys;
        tell("key", m_pointer.value_or(QPointF()));
        if (event->key() == Qt::Key_R && ++m_size < m_sizes.size())
            resize(m_sizes[m_size]);
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

    std::vector<QSize> m_sizes;
    std::size_t m_size = 0;
    std::optional<QPointF> m_pointer;
    std::optional<QSize> m_painted;
    int m_clicks = 0;
    int m_keys = 0;
};

class PageWindow final : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        for (int y = 0; y < height(); ++y)
            painter.fillRect(0, y, width(), 1, QColor(zento::test::Page::colour(m_top + y)));
        std::printf("wheel %d\n", m_top);
        std::fflush(stdout);
    }

    void wheelEvent(QWheelEvent* event) override
    {
        const int notches = event->angleDelta().y() / QWheelEvent::DefaultDeltasPerStep;
        const int last = std::max(0, zento::test::Page::kHeight - height());
        m_top = std::clamp(m_top - notches * zento::test::Page::kNotch, 0, last);
        update();
    }

private:
    int m_top = 0;
};

std::vector<QSize> sizesOf(const QStringList& words)
{
    std::vector<QSize> sizes;
    for (const QString& word : words.sliced(1))
        sizes.emplace_back(word.section('x', 0, 0).toInt(), word.section('x', 1).toInt());
    return sizes;
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    if (QGuiApplication::arguments().contains(QStringLiteral("page"))) {
        PageWindow page;
        page.showFullScreen();
        return QGuiApplication::exec();
    }
    const std::vector<QSize> sizes = sizesOf(QGuiApplication::arguments());
    ClientWindow window(sizes);
    if (sizes.empty())
        window.showFullScreen();
    else
        window.show();
    return QGuiApplication::exec();
}
