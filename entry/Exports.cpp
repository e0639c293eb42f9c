#include "orvexcommon/Exports.h"

#include "entry/ComponentCalls.h"

using orvex::CallEnd;
using orvex::RunCall;

bool ShowAddFilesDialog(AddFilesParams* params) {
    const orvex::CallOutcome outcome = RunCall(L"ShowAddFilesDialog", [params] {
        if (params == nullptr) {
            throw orvex::InvalidCall(L"no record was given");
        }
        return orvex::AddFiles(*params, {});
    });
    return outcome.end == CallEnd::Ok;
}

void MessageRegardingAddingLidar(HWND owner, const std::wstring& caption, bool a, bool b, bool c, bool d,
                                 bool e, bool f, bool g, bool& stop) {
    const orvex::LidarFindings findings{a, b, c, d, e, f, g};
    RunCall(L"MessageRegardingAddingLidar", [&] {
        TellLidarFindings(findings, caption, {reinterpret_cast<orvex::NativeWindow>(owner)});
        return CallEnd::Ok;
    });
    // Whether or not the user could be told.
    stop = stop || IsNothingToAdd(findings);
}

AddLidarChoice GetAddingLidarChoice(bool readWriteAllowed) {
    AddLidarChoice choice = ADD_LIDAR_READ_ONLY;
    RunCall(L"GetAddingLidarChoice", [&] { return orvex::AskAddingLidar(readWriteAllowed, {}, choice); });
    return choice;
}
