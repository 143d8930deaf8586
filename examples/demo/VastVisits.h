#pragma once

#include "VastFetch.h"

#include <QList>

namespace demo {

/// Asks for the pre-roll of a zone in every version of VAST, one after the other.
class VastVisits : public QObject {
    Q_OBJECT

public:
    explicit VastVisits(const QString& zone, QObject* parent = nullptr);

    void start();

    [[nodiscard]] const QList<VastAnswer>& answers() const { return answers_; }

    /// Of one answer, in words.
    [[nodiscard]] static QStringList deviations(const VastAnswer& answer);

signals:
    void finished();

private:
    void askNext();

    VastFetch fetch_;
    QList<VastQuestion> questions_;
    QList<VastAnswer> answers_;
};

}  // namespace demo
