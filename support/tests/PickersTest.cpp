#include "support/tests/Pickers.h"

#include <gmock/gmock.h>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Pickers, FilesComeWithFullPathsInTheOrderChosen) {
    const testing::TemporaryFolder folder;
    folder.Write(L"a.las", "x");
    folder.Write(L"b.LAS", "x");
    OpenFilesRequest request;
    request.title = L"Add Files";
    request.initialFolder = FromPath(folder.Path());
    request.filters = {{L"LAS Files (*.las)", L"*.las;*.laz"}};
    const PickedFiles two = testing::PickTyping(request, "\"b.LAS\" \"a.las\"");
    EXPECT_EQ(two.outcome, PickOutcome::Picked);
    EXPECT_THAT(two.paths, ElementsAre(folder.Name(L"b.LAS"), folder.Name(L"a.las")));
    EXPECT_EQ(testing::PickTyping(request, "").outcome, PickOutcome::Cancelled);
    // One name, because Wine writes several beyond the end of the buffer.
    request.bufferCharacters = 12;
    const PickedFiles tooMany = testing::PickTyping(request, "a.las");
    EXPECT_EQ(tooMany.outcome, PickOutcome::BufferTooSmall);
    EXPECT_THAT(tooMany.paths, IsEmpty());
}

}  // namespace
}  // namespace orvex
