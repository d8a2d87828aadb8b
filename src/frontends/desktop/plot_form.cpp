#include "frontends/desktop/plot_form.h"

#include "display/field_plot.h"
#include "display/plot_layout.h"
#include "frontends/desktop/window_places.h"
#include "shell/command_window.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace norvane {

PictureView::PictureView(Program& program, QWidget* parent)
    : QWidget(parent), program_(program), picture_(drawOnImage(program.ui.NV_out.Picture1)) {
    setObjectName("Picture1");
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    Surface& surface = program.ui.NV_out.Picture1;
    surface.cls = [this, clear = surface.cls] {
        clear();
        isChanged_ = true;
    };
}

void PictureView::takePlot() { isChanged_ = true; }

void PictureView::refresh() {
    if (isChanged_) update();
    isChanged_ = false;
}

QImage PictureView::image() const {
    cairo_surface_t* target = picture_->target.get();
    cairo_surface_flush(target);
    const unsigned char* bytes = cairo_image_surface_get_data(target);
    if (bytes == nullptr) return {}; // no memory for an image of this size
    return {bytes, picture_->width, picture_->height, cairo_image_surface_get_stride(target), QImage::Format_RGB32};
}

void PictureView::fitPixels(const QSizeF& pixels, const QSize& room) {
    const double most = std::min(room.width() / pixels.width(), room.height() / pixels.height());
    const double ofScreen = 1 / devicePixelRatioF();
    pixelSize_ = most >= 1 ? 1 : most >= ofScreen ? ofScreen : most;
}

void PictureView::copy() const { QGuiApplication::clipboard()->setImage(image().copy()); }

void PictureView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    isPainted_ = true;
    const double pixelsOfScreen = pixelSize_ * devicePixelRatioF();
    const bool fallTogether = std::abs(pixelsOfScreen - std::round(pixelsOfScreen)) < 1e-6;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !fallTogether);
    QImage picture = image();
    picture.setDevicePixelRatio(1 / pixelSize());
    constexpr Color ground = Surface::background;
    const bool isCovered = QRectF(QPointF(), picture.deviceIndependentSize()).contains(event->rect());
    if (!isCovered) painter.fillRect(event->rect(), QColor(ground.red, ground.green, ground.blue));
    painter.drawImage(0, 0, picture);
}

QString PictureView::tipAt(const QPointF& place) const {
    const double size = pixelSize();
    const PlotLayout& layout = program_.ui.NV_out.layout;
    const std::int32_t cell = cellAt(layout, program_.sim, std::floor(place.x() / size), std::floor(place.y() / size));
    return cell == 0 ? QString() : QString::fromStdString(describeCell(layout, program_.sim, cell));
}

bool PictureView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<const QHelpEvent*>(event);
        const QString tip = tipAt(help->pos());
        // The tip goes when the pointer leaves the spot it speaks of.
        if (tip.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), tip, this, QRect(help->pos() - QPoint(2, 2), QSize(5, 5)));
        return true;
    }
    return QWidget::event(event);
}

void PictureView::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("&Copy picture", this, &PictureView::copy);
    menu->popup(event->globalPos()); // without waiting: a run goes on meanwhile
}

PlotForm::PlotForm(Program& program, Act act)
    : FormWindow(program, program.ui.NV_out.form, std::move(act), 8520, 10350), view_(new PictureView(program, this)) {
    // A plot of a run must not take the keyboard from the window that a person works in.
    setAttribute(Qt::WA_ShowWithoutActivating);
    const ControlText& text = textOf("NV_out", "Picture1");
    view_->setAccessibleName(text.name);
    view_->setAccessibleDescription(text.toolTip);
}

QSize PlotForm::wantedSize() {
    const double size = view_->pixelSize();
    return {static_cast<int>(std::lround(double(form().width) * size)),
            static_cast<int>(std::lround(double(form().height) * size))};
}

void PlotForm::layOut(double) {
    view_->fitPixels({double(form().width), double(form().height)}, roomFor(*this));
    resize(wantedSize());
    view_->resize(size());
}

void PlotForm::resizeEvent(QResizeEvent* event) {
    FormWindow::resizeEvent(event);
    const QSize given = event->size();
    view_->resize(given);
    if (given == wantedSize()) return; // where points and pixels differ, several sizes may round to this one
    // A size that the window manager chooses before the window is seen is the one that it starts with: the plot is
    // drawn at it instead of being cleared.
    const bool isStart = event->spontaneous() && !view_->isPainted();
    act_([&] {
        form().width = static_cast<float>(std::floor(given.width() / view_->pixelSize()));
        form().height = static_cast<float>(std::floor(given.height() / view_->pixelSize()));
        if (isStart)
            drawField(program_.sim, program_.ui);
        else
            raiseResize(program_, form());
    });
}

void PlotForm::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        view_->copy();
    else
        FormWindow::keyPressEvent(event);
}

} // namespace norvane
