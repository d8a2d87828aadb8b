#pragma once
// Messages that come in series, one for each faulty cell or row: a front end shows the first few and one that closes
// the series, since nobody can dismiss hundreds of boxes.

#include "platform/run_events.h"

#include <cstdint>
#include <string>
#include <vector>

namespace norvane {

/// The series in hand: messages of one kind other than ReportKind::note.
struct MessageSeries {
    ReportKind kind = ReportKind::note;
    std::int64_t count = 0;           ///< of the messages
    std::vector<std::int64_t> places; ///< those of the messages that were held back, ascending parts one after another
};

/// Whether a message ends the series in hand: it is of another kind. Then closingMessage is shown first.
bool endsSeries(const MessageSeries& series, const Report& report);

/// Counts a message, and gives whether it is to be shown.
bool countMessage(MessageSeries& series, const Report& report);

/// What is shown in place of the messages that were held back, with their number and the cells or rows that they are
/// about; empty where none were. Begins a new series.
std::string closingMessage(MessageSeries& series);

} // namespace norvane
