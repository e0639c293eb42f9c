#pragma once
#include <string>
#include <vector>

#include "dialog/testing/PageFixture.h"
#include "host/utilities/testing/LazSamples.h"
#include "las/page/AddLASFilesModel.h"
#include "las/page/AddLASFilesPP.h"
#include "las/page/LasPageControls.h"
#include "las/testing/LasBuilder.h"

namespace orvex::testing {

/// The page by itself, with everything around it scripted.
class LasPage : public PageFixture<AddLASFilesPP> {
  protected:
    LasPage() : PageFixture(LasListControls()) { MakePage(); }

    std::wstring Las(const std::wstring& name, int epsg = 25832) const {
        return folder.Write(
            name, LasBuilder(12, 1).AddPoints(9).ProjectedEpsg(static_cast<std::uint16_t>(epsg)).Build());
    }
    std::wstring Laz(const std::wstring& name) const {
        WriteSample(folder.Name(name), {}, true);
        return folder.Name(name);
    }
    std::vector<std::wstring> ManyLas(int count) const {
        std::vector<std::wstring> paths;
        paths.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            paths.push_back(Las(L"tile" + std::to_wstring(i) + L".las"));
        }
        return paths;
    }

    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (const LasRow& row : page->Model().Rows()) {
            names.push_back(FileNameOf(row.inspection.path));
        }
        return names;
    }
    std::vector<std::wstring> Layers() const {
        std::vector<std::wstring> layers;
        for (const LasRow& row : page->Model().Rows()) {
            layers.push_back(row.layer);
        }
        return layers;
    }
};

}  // namespace orvex::testing
