// What a user waits for when looking at a map: through the real viewer, scroll bars and events, from the
// event until the frame is painted. Without a screen:
//
//     QT_QPA_PLATFORM=offscreen bench_view LIBRARY.Atlavex [KEY]
//
// measures the first map of the library in a viewer of 1920 × 1080 device pixels.

#include "component/AtlavexLibrary.h"
#include "view/KarvelViewer.h"
#include "view/ZoomSlider.h"
#include "view/clsBitmapView.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr QSize ViewerSize(1920, 1080);
constexpr QPoint Pointer(700, 400);
constexpr int BarBreadth = 16;

/// Measured times of one kind, in milliseconds.
class Times {
public:
    template <typename Work>
    void Measure(const Work& work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        times_.push_back(taken.count());
    }

    void Print(const std::string& name) {
        if (times_.empty())
            return;
        std::sort(times_.begin(), times_.end());
        std::printf("| %-44s | %5zu | %7.2f | %7.2f | %7.2f |\n", name.c_str(), times_.size(), Part(0.5),
                    Part(0.99), times_.back());
        std::fflush(stdout);
    }

private:
    double Part(double part) const {
        return times_[static_cast<std::size_t>(part * static_cast<double>(times_.size() - 1))];
    }

    std::vector<double> times_;
};

/// A viewer, two bars and a status line on a view, wired as in the editor.
class Desk : public QObject {
public:
    explicit Desk(std::shared_ptr<AtlavexMap> map) : map_(std::move(map)) {
        // Without a layout, whose limits the offscreen platform cannot take and would report each time.
        const int width = ViewerSize.width(), height = ViewerSize.height();
        viewer.setGeometry(0, 0, width, height);
        vertical.setGeometry(width, 0, BarBreadth, height);
        horizontal.setGeometry(0, height, width, BarBreadth);
        status_.setGeometry(0, height + BarBreadth, width, BarBreadth);
        window_.resize(width + BarBreadth, height + 2 * BarBreadth);
        viewer.installEventFilter(this);
        view.SetViewer(&viewer);
        view.SetScrollBars(&horizontal, &vertical);
        connect(&horizontal, &QScrollBar::valueChanged, this, [this] { view.ChangeHScroll(); });
        connect(&vertical, &QScrollBar::valueChanged, this, [this] { view.ChangeVScroll(); });
        connect(&viewer, &KarvelViewer::Turned, this, [this](QPoint by) { view.ScrollBy(-by); });
        connect(&viewer, &KarvelViewer::ZoomTurned, this,
                [this](int steps, QPoint at) { view.ZoomAbout(SliderPositionOf(view.Zoom()) + steps, at); });
        connect(&viewer, &KarvelViewer::MouseMoved, this, &Desk::ReadOut);
        window_.show();
        UntilPainted([] {});
    }

    void Select(double zoom) {
        map_->SetZoom(zoom);
        view.SetMap(map_);
        view.SetMapWidth(map_->Width());
        view.SetMapHeight(map_->Height());
        view.AdjustSize();
    }

    /// Serves events until what is shown is final; each serving counts as a pause in which the window does
    /// not answer.
    void UntilFinal(Times& pauses) {
        while (map_->ViewIsDraft())
            pauses.Measure([] { QCoreApplication::processEvents(); });
    }

    /// Does the work and serves events until the viewer has painted anew.
    template <typename Work>
    void UntilPainted(const Work& work) {
        painted_ = false;
        work();
        // Painting is posted. What waits for a quiet moment comes after the frame.
        QCoreApplication::sendPostedEvents();
        while (!painted_)
            QCoreApplication::processEvents();
    }

    void Wheel(int angle, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(Pointer, viewer.mapToGlobal(QPointF(Pointer)), QPoint(), QPoint(0, angle),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&viewer, &event);
    }

    void MovePointer(const QPointF& at) {
        QMouseEvent event(QEvent::MouseMove, at, viewer.mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&viewer, &event);
        QCoreApplication::processEvents();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        painted_ = painted_ || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

private:
    void ReadOut(QPoint at) {
        const std::optional<ImagePixel> pixel = view.PixelAt(at);
        if (!pixel)
            return;
        const WorldPosition world = map_->PixelToWorld({double(pixel->x), double(pixel->y)});
        status_.setText(QString::number(world.x, 'f', 2) + ' ' + QString::number(world.y, 'f', 2));
    }

    QWidget window_;
    QLabel status_{&window_};
    std::shared_ptr<AtlavexMap> map_;
    bool painted_ = false;

public:
    KarvelViewer viewer{&window_};
    QScrollBar horizontal{Qt::Horizontal, &window_};
    QScrollBar vertical{Qt::Vertical, &window_};
    clsBitmapView view;
};

class Bench {
public:
    Bench(std::string file, std::string key) : file_(std::move(file)), key_(std::move(key)) {}

    void Run() {
        std::printf("| %-44s | %5s | %7s | %7s | %7s |\n|---|---|---|---|---|\n",
                    "milliseconds until the frame is painted", "times", "p50", "p99", "max");
        for (const std::int32_t position : {0, -1, -3, -4, -6, -7, -13, -30, 10})
            First(position);
        for (const std::int32_t position : {0, -3, -6, 10}) {
            Strokes(position);
            Bars(position);
        }
        for (const std::int32_t position : {0, -3, -6})
            Across(position);
        ZoomSteps();
        ReadOut();
    }

private:
    std::shared_ptr<AtlavexMap> Load() {
        LibraryOptions options;
        options.viewPatience = 20; // as in the editor
        library_ = CreateAtlavexLibrary(options);
        library_->LoadFromFile(file_, key_);
        return library_->GetMap(library_->MapIdAt(1));
    }

    static std::string At(const std::string& what, std::int32_t position) {
        return what + " at " + std::to_string(ZoomPercentage(ZoomAtSliderPosition(position))) + " %";
    }

    /// A library just opened, and then a far part that was never looked at.
    void First(std::int32_t position) {
        std::mt19937 random(1);
        std::uniform_real_distribution<> place(0.4, 0.9);
        Times first, far, pauses, final;
        for (int i = 0; i < 20; ++i) {
            const auto map = Load();
            Desk desk(map);
            first.Measure([&] { desk.UntilPainted([&] { desk.Select(ZoomAtSliderPosition(position)); }); });
            const double x = place(random) * map->Width(), y = place(random) * map->Height();
            desk.UntilFinal(pauses);
            if (desk.horizontal.maximum() == 0)
                continue;
            final.Measure([&] {
                far.Measure([&] { desk.UntilPainted([&] { desk.view.CenterOn(x, y); }); });
                desk.UntilFinal(pauses);
            });
        }
        first.Print(At("first view", position));
        far.Print(At("jump to a far part", position));
        pauses.Print(At("pause while a draft is made final", position));
        final.Print(At("jump until final", position));
    }

    /// To and fro by the wheel where all tiles are at hand.
    void Strokes(std::int32_t position) {
        Desk desk(Load());
        Start(desk, position);
        Times times;
        for (int i = -40; i < 500; ++i) {
            const int angle = (i / 4) % 2 == 0 ? -120 : 120;
            const auto stroke = [&] { desk.UntilPainted([&] { desk.Wheel(angle, Qt::NoModifier); }); };
            i < 0 ? stroke() : times.Measure(stroke);
        }
        times.Print(At("wheel stroke, tiles at hand,", position));
    }

    void Bars(std::int32_t position) {
        Desk desk(Load());
        Start(desk, position);
        Times times;
        for (int i = -40; i < 500; ++i) {
            const int by = (i / 8) % 2 == 0 ? 37 : -37;
            const auto stroke = [&] {
                desk.UntilPainted([&] { desk.horizontal.setValue(desk.horizontal.value() + by); });
            };
            i < 0 ? stroke() : times.Measure(stroke);
        }
        times.Print(At("scroll bar stroke, tiles at hand,", position));
    }

    /// Always onwards: new tiles come in at the edge.
    void Across(std::int32_t position) {
        Desk desk(Load());
        Start(desk, position);
        desk.vertical.setValue(0);
        desk.UntilPainted([&] { desk.viewer.update(); });
        Times times;
        for (int i = 0; i < 300 && desk.vertical.value() < desk.vertical.maximum(); ++i)
            times.Measure([&] { desk.UntilPainted([&] { desk.Wheel(-120, Qt::NoModifier); }); });
        times.Print(At("wheel across new tiles", position));
    }

    void ZoomSteps() {
        Desk desk(Load());
        desk.Select(1);
        desk.Select(ZoomAtSliderPosition(desk.view.FitPosition()));
        desk.UntilPainted([&] { desk.viewer.update(); });
        Times times;
        const std::int32_t from = desk.view.FitPosition(), to = desk.view.HighestSliderPosition();
        for (int way = 0; way < 6; ++way)
            for (std::int32_t step = from; step < to; ++step)
                times.Measure([&] {
                    desk.UntilPainted([&] { desk.Wheel(way % 2 == 0 ? 120 : -120, Qt::ControlModifier); });
                });
        times.Print("zoom step, in and out about the pointer");
    }

    void ReadOut() {
        const auto map = Load();
        map->SetMapDatum(QuorvantDatum().AsNumbers());
        map->SetScalingThreePoints({8, 50, 0, 0}, {9, 50, map->Width(), 0}, {8, 49, 0, map->Height()});
        Desk desk(map);
        Start(desk, 0);
        Times times;
        for (int i = 0; i < 2000; ++i)
            times.Measure([&] { desk.MovePointer(QPointF(100 + i % 1500, 100 + i % 700)); });
        times.Print("mouse move with read-out");
    }

    static void Start(Desk& desk, std::int32_t position) {
        desk.Select(ZoomAtSliderPosition(position));
        desk.view.CenterOn(desk.view.MapWidth() / 3.0, desk.view.MapHeight() / 3.0);
        Times unmeasured;
        desk.UntilFinal(unmeasured);
        desk.UntilPainted([&] { desk.viewer.update(); });
    }

    std::string file_;
    std::string key_;
    std::unique_ptr<AtlavexLibrary> library_;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc < 2 || argc > 3) {
        std::fputs("usage: bench_view LIBRARY.Atlavex [KEY]\n", stderr);
        return 2;
    }
    Bench(argv[1], argc == 3 ? argv[2] : "").Run();
    return 0;
}
