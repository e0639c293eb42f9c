#include "raster/page/RasterOptionsWidget.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>

#include "dialog/page/ControlWidget.h"
#include "raster/page/RasterPageControls.h"

namespace orvex {

using namespace raster_control;

RasterOptionsWidget::RasterOptionsWidget(QWidget* parent)
    : QWidget(parent),
      append_(MakeControl<QCheckBox>(kAppend, text::kAppendToCompatibleLayers, text::kRasterAppendTooltip)),
      pyramid_(MakeControl<QCheckBox>(kPyramid, text::kRasterBuildPyramids, text::kRasterPyramidsTooltip)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeGroup(kOptionsGroup, text::kOptions, QBoxLayout::TopToBottom, {append_, pyramid_}),
                      1);
    connect(append_, &QCheckBox::clicked, this, &RasterOptionsWidget::LayerRulesChanged);
}

void RasterOptionsWidget::SetOptions(const RasterPageOptions& options) {
    append_->setChecked(options.append);
    pyramid_->setChecked(options.pyramid);
}

RasterPageOptions RasterOptionsWidget::Options() const {
    RasterPageOptions options;
    options.append = append_->isChecked();
    options.pyramid = pyramid_->isChecked();
    return options;
}

}  // namespace orvex
