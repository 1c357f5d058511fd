#pragma once

#include <QPointer>
#include <QScrollBar>

#include <cstdint>

/// Length of an image side on the screen: size times zoom, where a part of a pixel counts as one, because it
/// is painted. Not cut to any range of integers.
double ZoomedLength(std::int32_t imageSize, double zoom);

/// One direction in which an image is scrolled. The scroll bar's values stay within 16 bits: where more than
/// 32,767 zoomed pixels lie outside the viewer, one unit of the bar stands for ten of them ("coarse"), which
/// is enough for 327,670.
class ScrollAxis {
public:
    static constexpr std::int32_t LargestValue = 32767;
    static constexpr std::int32_t CoarseStep = 10;
    /// Zoomed pixels outside the viewer that can be scrolled to.
    static constexpr std::int32_t LargestOverhang = LargestValue * CoarseStep;

    void SetBar(QScrollBar* bar) { bar_ = bar; }

    /// Sets the bar's range for an image side, with silent signals. The part shown stays the same as far as
    /// the new range allows.
    void LayOut(std::int32_t imageSize, double zoom, std::int32_t viewerSize);

    /// Zoomed pixels from the image's edge to the viewer's. Ten times a coarse bar's value; only its last
    /// position, which may be up to nine pixels too far, shows the image's end at the viewer's.
    std::int32_t Offset() const;
    /// The same, with the part of a unit by which the bar fell short when it was last moved here: what is
    /// zoomed and zoomed back must not creep away.
    double ExactOffset() const;
    bool IsCoarse() const { return step_ != 1; }

    /// Sets the bar to the nearest value, with silent signals.
    void MoveTo(double offset);
    /// The same from where the bar stands. Movements smaller than the bar's unit add up.
    void MoveBy(std::int32_t pixels);

private:
    double Owed() const;

    QPointer<QScrollBar> bar_;
    std::int32_t step_ = 1;
    std::int32_t overhang_ = 0;
    double owed_ = 0; ///< zoomed pixels by which the last movement fell short
    int valueOfOwed_ = 0;
};
