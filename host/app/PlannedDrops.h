#pragma once
#include <QObject>
#include <QTimer>

#include "host/app/DropPlan.h"

namespace orvex {

/// Waits for the Add Files dialog and drops what is planned on its pages; then it deletes itself.
class PlannedDrops final : public QObject {
    Q_OBJECT

  public:
    PlannedDrops(DropPlan plan, QObject* parent);

  private:
    void DropWhenOpen();

    DropPlan plan_;
    QTimer timer_;
};

}  // namespace orvex
