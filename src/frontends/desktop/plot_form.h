#pragma once
// The plot window.

#include "drawing/image_surface.h"
#include "frontends/desktop/form_window.h"

#include <QImage>
#include <memory>

namespace norvane {

/// Shows the image of the plot. A pixel of it is a point, as large as everything else on the screen; on a screen too
/// small for that, a pixel of the screen or what there is room for. Where pixels of image and screen fall together
/// nothing is smoothed.
class PictureView : public QWidget {
public:
    PictureView(Program& program, QWidget* parent);

    /// A plot is complete.
    void takePlot();

    /// Paints the image anew if it was changed.
    void refresh();

    /// The image. It shares the memory of the picture.
    QImage image() const;

    /// Points of the window for a pixel of the image.
    double pixelSize() const { return pixelSize_; }

    /// Chooses that size, for an image of so many pixels.
    void fitPixels(const QSizeF& pixels, const QSize& room);

    bool isPainted() const { return isPainted_; }

    void copy() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QString tipAt(const QPointF& place) const;

    Program& program_;
    std::shared_ptr<Picture> picture_;
    double pixelSize_ = 1;
    bool isChanged_ = false;
    bool isPainted_ = false; ///< since the window was shown first
};

class PlotForm : public FormWindow {
public:
    PlotForm(Program& program, Act act);

    /// The window gets the size that its record says, in pixels of the image.
    void layOut(double factor) override;

    void refresh() override { view_->refresh(); }

    PictureView& view() { return *view_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// Of the window, in points, for the size in the record.
    QSize wantedSize();

    PictureView* view_;
};

} // namespace norvane
