#pragma once
#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "crs/GdalSetup.h"
#include "dialog/page/FileListPageOf.h"
#include "raster/page/RasterDetailsView.h"
#include "raster/page/RasterFilesModel.h"
#include "raster/page/RasterPageTasks.h"

namespace orvex {

/// What the raster page and the DEM page share: their rows, how these are read and what is told of them. The
/// first page of each kind in a process sets GDAL up; without GDAL files are listed all the same.
template <RasterUse Use>
class RasterListPage : public FileListPageOf<RasterFilesModelOf<Use>> {
    using Base = FileListPageOf<RasterFilesModelOf<Use>>;

  protected:
    RasterListPage(const PageContext& context, QWidget* parent)
        : Base(context, DescribeRasterListPage(Use, *context.params),
               MakeRasterAdder(Use, context.services.hostObjects.RasterInformation()),
               MakeRasterRefresher(Use, context.services.hostObjects.RasterInformation()), parent) {
        static GdalSetup setup;
        setup.Run();
    }

    DetailsContent Details(std::span<const std::size_t> records) const override {
        return RasterDetailsContent(this->Model().Rows(), records, Use, this->DetailsPane().CaptionColour());
    }

    AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) override {
        std::size_t seen = this->Model().Count();
        bool told = false;
        return Base::AddRows(std::move(request), [&] {
            appended();
            told = told || TellOfExceptions(seen);
            seen = this->Model().Count();
        });
    }

    bool RereadRows() override {
        const bool changed = Base::RereadRows();
        TellOfExceptions(0);
        return changed;
    }

    void AssignLayers(const std::map<std::wstring, std::wstring>& existing, const LayerRules& rules,
                      LayerCrs crs, const std::wstring& prefix) {
        this->EditModel().Change(
            [&](std::vector<RasterRow>& rows) { orvex::AssignLayers(rows, existing, rules, crs, prefix); });
    }

  private:
    /// Says so when reading some row from `first` on ended with an exception; once, however many there are.
    bool TellOfExceptions(std::size_t first) const {
        const auto& rows = this->Model().Rows();
        const bool threw = std::any_of(rows.begin() + static_cast<std::ptrdiff_t>(first), rows.end(),
                                       [](const RasterRow& row) { return row.File().threw; });
        if (threw) {
            this->ShowMessage(Text(text::kRasterPropertiesFailed), text::kRasterPropertiesFailed,
                              PromptIcon::Error);
        }
        return threw;
    }
};

}  // namespace orvex
