#include "frontends/desktop/event_pump.h"

#include <QCoreApplication>
#include <algorithm>

namespace norvane {

namespace {

constexpr int shareOfTime = 100; // one part in this many goes to looking, and one to painting

using std::chrono::milliseconds;

/// The pause after something that took a while.
milliseconds pauseAfter(std::chrono::nanoseconds cost, milliseconds shortest, milliseconds longest) {
    return std::clamp(std::chrono::duration_cast<milliseconds>(cost * shareOfTime), shortest, longest);
}

} // namespace

void EventPump::poll() {
    const Clock::time_point start = Clock::now();
    const bool shows = start >= nextShow_;
    if (shows) show_();
    QCoreApplication::processEvents();
    const Clock::time_point end = Clock::now();
    if (shows) nextShow_ = end + pauseAfter(end - start, milliseconds(40), milliseconds(250));
    // A tenth of a second less what the stage of a run takes that follows.
    nextPoll_ = end + (shows ? milliseconds(10) : pauseAfter(end - start, milliseconds(10), milliseconds(75)));
}

} // namespace norvane
