// The codes of coordinate systems come from PROJ's database, which lies beside the programs.
#include <cpl_string.h>
#include <gtest/gtest.h>
#include <ogr_srs_api.h>

#include "support/ModuleFolder.h"
#include "support/Text.h"

namespace orvex {
namespace {

class ProjData : public ::testing::Environment {
  public:
    void SetUp() override {
        CPLStringList paths;
        paths.AddString(ToUtf8(FromPath(ModuleFolder() / "proj")).c_str());
        OSRSetPROJSearchPaths(paths.List());
    }
};

const ::testing::Environment* const kProjData = ::testing::AddGlobalTestEnvironment(new ProjData);

}  // namespace
}  // namespace orvex
