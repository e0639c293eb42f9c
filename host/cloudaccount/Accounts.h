#pragma once
// The two kinds of account. Failures are CloudErrors.
#include <string>

#include "orvexcommon/CloudAccount.h"

namespace orvex::cloud {

/// Appends a page of projects and sets `list.next`, which names the page before the call.
void ListServerProjects(const CloudAccount& account, const std::wstring& filter, ArchivingProjectList& list,
                        const CloudCall& call);
std::string ServerProjectFiles(const CloudAccount& account, const std::string& projectId,
                               const std::string& page, const CloudCall& call);

/// The same of a folder. A page is named by its offset in the file and the file's size.
void ListFolderProjects(const std::wstring& folder, const std::wstring& filter, ArchivingProjectList& list,
                        const CloudCall& call);
std::string FolderProjectFiles(const std::wstring& folder, const std::string& projectId,
                               const std::string& page);

}  // namespace orvex::cloud
