#pragma once
// The plot window.

#include "frontends/desktop/cell_probe.h"
#include "frontends/desktop/form_window.h"
#include "frontends/image/image_surface.h"

#include <QImage>
#include <memory>

namespace norvane {

/// Shows the image of the plot, each of its pixels as a square of whole pixels of the screen, so that nothing is
/// smoothed: a screen of twice the density shows two by two, one of one and a half times shows a smaller picture.
class PictureView : public QWidget {
public:
    PictureView(Program& program, QWidget* parent);

    CellProbe probe;

    /// A plot is complete.
    void takePlot();

    /// Paints the image anew if it was changed.
    void refresh();

    /// The image as it stands. It shares the memory of the picture.
    QImage image() const;

    /// Points of the window for a pixel of the image.
    double pixelSize() const;

    void copy() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QString tipAt(const QPointF& place) const;

    Program& program_;
    std::shared_ptr<Picture> picture_;
    bool isChanged_ = false;
};

class PlotForm : public FormWindow {
public:
    PlotForm(Program& program, Act act);

    /// The window keeps the size that its record tells, in pixels of the image.
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
