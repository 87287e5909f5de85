// A Qt window that is dragged from.
//
//   qt-drag-source X Y FORMAT=TEXT...
//
// It lies at (X, Y), 100 x 100 device pixels, and offers each FORMAT (a MIME type) as the given text. Lines on standard
// output: "ready", and for each drag "drag-begin" and "drag-end copy|move|none".

#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QWindow>
#include <cstdio>

namespace {
class Source : public QWindow {
 protected:
    void exposeEvent(QExposeEvent*) override {
        if (isExposed()) std::puts("ready");
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!event->buttons() || dragging_) return;
        dragging_ = true;
        auto* offer = new QMimeData;
        for (const QString& argument : QGuiApplication::arguments().mid(3))
            offer->setData(argument.section(u'=', 0, 0), argument.section(u'=', 1).toUtf8());
        auto* drag = new QDrag(this);
        drag->setMimeData(offer);
        std::puts("drag-begin");
        const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction);
        std::puts(action == Qt::CopyAction   ? "drag-end copy"
                  : action == Qt::MoveAction ? "drag-end move"
                                             : "drag-end none");
        dragging_ = false;
    }

 private:
    bool dragging_ = false;
};
}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    Source window;
    window.setFlags(Qt::ToolTip);
    window.setGeometry(arguments.value(1).toInt(), arguments.value(2).toInt(), 100, 100);
    window.show();
    return QGuiApplication::exec();
}
