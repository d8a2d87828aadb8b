#include "frontends/desktop/thread_setting.h"

#include "core/sim_state.h"

#include <QInputDialog>
#include <QSettings>
#include <QSpinBox>
#include <QThread>

namespace norvane {

namespace {

constexpr const char* key = "run/threads";

} // namespace

int keptThreads() {
    const int threads = QSettings().value(key, 0).toInt();
    return threads >= 0 && threads <= maxThreads ? threads : 0; // somebody may have edited it
}

void keepThreads(int threads) {
    QSettings settings;
    settings.setValue(key, threads);
    settings.sync();
}

std::optional<int> askForThreads(QWidget* parent, int threads) {
    QInputDialog box(parent);
    box.setObjectName("threads");
    box.setWindowTitle("Threads");
    box.setLabelText(QStringLiteral("Threads of the next run. This machine runs %1 side by side.\n"
                                    "The results are the same for any number.")
                         .arg(QThread::idealThreadCount()));
    box.setInputMode(QInputDialog::IntInput);
    box.setIntRange(0, maxThreads);
    box.setIntValue(threads);
    if (auto* number = box.findChild<QSpinBox*>()) number->setSpecialValueText("as suits the grid");
    box.setWindowModality(Qt::ApplicationModal);
    if (box.exec() != QDialog::Accepted) return {};
    return box.intValue();
}

} // namespace norvane
