#include "frontends/desktop/window_places.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <algorithm>

namespace norvane {

namespace {

constexpr int gap = 24; // between windows: room for their frames

QString keyOf(const QWidget* window) { return "places/" + window->objectName(); }

/// Whether enough of a window lies on a screen to see and to move it.
bool isReachable(const QRect& place) {
    const QRect head(place.topLeft(), QSize(place.width(), 2 * gap));
    const QList<QScreen*> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        const QRect seen = screen->availableGeometry().intersected(head);
        return seen.width() >= 3 * gap && seen.height() >= gap;
    });
}

} // namespace

QSize roomFor(const QWidget& window) {
    const QScreen* screen = window.screen() != nullptr ? window.screen() : QGuiApplication::primaryScreen();
    return screen->availableGeometry().size() - QSize(gap, 3 * gap); // as far down as windows are placed, and a frame
}

void restorePlaces(const std::vector<QWidget*>& windows) {
    const QSettings settings;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QPoint next = screen.topLeft() + QPoint(gap, 2 * gap);
    for (QWidget* window : windows) {
        const QPoint farthest = screen.bottomRight() - QPoint(window->width() + gap, window->height() + gap);
        // What does not fit beside the others covers the lower part of the plot rather than its head.
        const QPoint free = next.x() <= farthest.x() ? next : farthest;
        const int top = std::min(free.y(), farthest.y());
        const QPoint fresh(std::max(free.x(), screen.left()), std::max(top, screen.top()));
        const QPoint kept = settings.value(keyOf(window), fresh).toPoint();
        window->move(isReachable({kept, window->size()}) ? kept : fresh);
        next.rx() += window->width() + gap;
    }
}

void centreOn(const QWidget* other, QWidget& window) {
    const QRect screen = other->screen()->availableGeometry();
    const QPoint wanted = other->frameGeometry().center() - window.rect().center();
    const QPoint farthest = screen.bottomRight() - QPoint(window.width() + gap, window.height() + gap);
    window.move(std::max(screen.left(), std::min(wanted.x(), farthest.x())),
                std::max(screen.top(), std::min(wanted.y(), farthest.y())));
}

void keepPlaces(const std::vector<QWidget*>& windows) {
    QSettings settings;
    for (const QWidget* window : windows) settings.setValue(keyOf(window), window->pos());
    settings.sync();
}

} // namespace norvane
