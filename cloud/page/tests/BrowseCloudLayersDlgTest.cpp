#include "cloud/page/BrowseCloudLayersDlg.h"

#include <gtest/gtest.h>

TEST(BrowseCloudLayersDlg, Nothing) {}
