#include "dialog/CAddingLidarDlg.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "dialog/Images.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr int kTextWidth = 420;

QPushButton* MakeButton(StringId text, const char* name) {
    auto* button = new QPushButton(ToQString(Text(text)));
    button->setObjectName(QLatin1String(name));
    return button;
}

}  // namespace

CAddingLidarDlg::CAddingLidarDlg(bool readWriteAllowed, QWidget* parent)
    : QDialog(parent,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      choices_(new QButtonGroup(this)),
      doNotAskAgain_(new QCheckBox(ToQString(Text(text::kLidarRememberChoice)))) {
    setWindowTitle(ToQString(Text(text::kLidarTitle)));
    setWindowIcon(ApplicationIcon());
    doNotAskAgain_->setObjectName(QStringLiteral("doNotAskAgain"));

    auto* explanation = new QLabel(ToQString(Text(text::kLidarAccessQuestion)));
    explanation->setObjectName(QStringLiteral("explanation"));
    explanation->setWordWrap(true);
    explanation->setMinimumWidth(kTextWidth);
    auto* ok = MakeButton(text::kOk, "ok");
    auto* cancel = MakeButton(text::kCancel, "cancel");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &CAddingLidarDlg::accept);
    connect(cancel, &QPushButton::clicked, this, &CAddingLidarDlg::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(explanation);
    layout->addSpacing(6);
    BuildChoices(readWriteAllowed);
    layout->addSpacing(6);
    layout->addWidget(doNotAskAgain_);
    layout->addSpacing(6);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
}

void CAddingLidarDlg::BuildChoices(bool readWriteAllowed) {
    struct Choice {
        AddLidarChoice choice;
        StringId text;
        const char* name;
    };
    const Choice choices[] = {{ADD_LIDAR_READ_ONLY, text::kLidarAddReadOnly, "readOnly"},
                              {ADD_LIDAR_READ_WRITE, text::kLidarAddReadWrite, "readWrite"},
                              {ADD_LIDAR_NOT_AT_ALL, text::kLidarDoNotAdd, "notAtAll"}};
    for (const Choice& choice : choices) {
        auto* radio = new QRadioButton(ToQString(Text(choice.text)));
        radio->setObjectName(QLatin1String(choice.name));
        radio->setChecked(choice.choice == answer_.choice);
        radio->setEnabled(choice.choice != ADD_LIDAR_READ_WRITE || readWriteAllowed);
        choices_->addButton(radio, choice.choice);
        layout()->addWidget(radio);
    }
    choices_->button(answer_.choice)->setFocus();
}

void CAddingLidarDlg::accept() {
    answer_ = {static_cast<AddLidarChoice>(choices_->checkedId()), doNotAskAgain_->isChecked()};
    QDialog::accept();
}

}  // namespace orvex
