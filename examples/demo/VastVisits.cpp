#include "VastVisits.h"

namespace demo {

namespace {

/// Zones whose name promises no video.
const QStringList kWithoutVideo{"banner", "no-fill", "unsupported"};

}  // namespace

VastVisits::VastVisits(const QString& zone, QObject* parent) : QObject(parent) {
    for (const auto version : {velmora::VLVastVersion::v2, velmora::VLVastVersion::v3}) {
        questions_ << VastQuestion{
            .zone = zone, .type = velmora::VLPrerollType::skippable, .version = version};
    }
    connect(&fetch_, &VastFetch::came, this, [this](const VastAnswer& answer) {
        answers_ << answer;
        askNext();
    });
}

void VastVisits::start() { askNext(); }

void VastVisits::askNext() {
    if (answers_.size() == questions_.size()) {
        emit finished();
        return;
    }
    fetch_.fetch(questions_[answers_.size()]);
}

QStringList VastVisits::deviations(const VastAnswer& answer) {
    return answer.deviations(!kWithoutVideo.contains(answer.question.zone));
}

}  // namespace demo
