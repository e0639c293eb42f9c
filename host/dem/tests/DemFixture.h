#pragma once
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/dem/DemConversion.h"
#include "host/dem/testing/DemSamples.h"
#include "las/LASFile.h"
#include "las/LasPointViews.h"
#include "support/LDataError.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

using Place = std::array<double, 3>;

/// Rasters in one folder, LAS files in another.
class DemFixture : public ::testing::Test {
  protected:
    DemFixture() { options_.outputFolder = folder_.Name(L"out"); }

    std::wstring Write(const DemSample& sample, const std::wstring& name = L"in/a.tif") const {
        folder_.Write(L"in/.keep", "");
        std::wstring path = folder_.Name(name);
        EXPECT_TRUE(WriteDem(path, sample));
        return path;
    }
    /// Converts without stopping; what is thrown passes.
    DemConversionResult Convert(const std::wstring& path) const {
        Kst::NullProgress progress;
        auto result = ConvertDem(path, options_, progress);
        EXPECT_TRUE(result.has_value());
        return result.value_or(DemConversionResult{});
    }
    DemConversionResult Convert(const DemSample& sample) const { return Convert(Write(sample)); }

    /// The text of the failure; empty when the conversion succeeds.
    std::wstring FailureOf(const std::wstring& path) const {
        try {
            Convert(path);
        } catch (const LDataError& error) {
            return error.Text();
        }
        return {};
    }

    static std::vector<Place> PointsOf(const std::wstring& las) {
        std::vector<Place> places;
        const auto file = LASFile::Open(las, true, false);
        const LasPointViews* const points = file->Points();
        for (std::uint64_t v = 0; points != nullptr && v < points->ViewCount(); ++v) {
            const LasPointView view = points->Map(v);
            for (std::uint64_t i = 0; i < view.Count(); ++i) {
                places.push_back(view.Position(view.FirstPoint() + i));
            }
        }
        return places;
    }

    TemporaryFolder folder_;
    DemConversionOptions options_;
};

}  // namespace orvex::testing
