#pragma once
#include <gtest/gtest.h>

#include <filesystem>

#include "dialog/page/FolderScan.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {

/// A folder with files at three depths.
class Scanning : public ::testing::Test {
  protected:
    Scanning() {
        for (const wchar_t* name :
             {L"b10.las", L"b2.LAS", L"a.laz", L"notes.txt", L"sub/c.las", L"sub/deep/d.las"}) {
            folder.Write(name, "x");
        }
    }
    std::vector<std::wstring> Names(const ScanResult& result) const {
        std::vector<std::wstring> names;
        const std::wstring top = folder.Name(L"");
        for (const std::wstring& path : result.files) {
            names.push_back(path.starts_with(top) ? path.substr(top.size()) : path);
        }
        return names;
    }
    /// The name of a file in the subfolder, relative to the top, with the system's separators.
    static std::wstring Sub(const std::wstring& name) {
        return FromPath(ToPath(L"sub/" + name).make_preferred());
    }
    ScanResult Scan(bool recursive, std::vector<std::wstring> extensions = {L".LAS"}) const {
        return ScanPaths({{FromPath(folder.Path())}, std::move(extensions), recursive}, {});
    }
    testing::TemporaryFolder folder;
};

}  // namespace orvex
