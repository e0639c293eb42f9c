#include "host/companion/CompanionCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <sstream>

#include "host/companion/PointPicture.h"
#include "las/testing/LasFiles.h"
#include "las/testing/QvrSample.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LasBuilder;

struct Ran {
    int code;
    std::string out, err;
};

Ran Companion(const std::vector<std::wstring>& arguments, bool isStopped = false) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunCompanionCommand(arguments, {out, err, false, [=] { return isStopped; }});
    return {code, out.str(), err.str()};
}

class CompanionCommand : public ::testing::Test {
  protected:
    std::wstring WriteLas(const std::wstring& name, std::size_t points = 400) const {
        return folder_.Write(name, LasBuilder(14, 6).AddPoints(points).Build());
    }

    const testing::TemporaryFolder folder_{};
};

TEST_F(CompanionCommand, SaysWhatIsWrongWithItsArguments) {
    const struct {
        std::vector<std::wstring> arguments;
        const char* message;
    } cases[] = {
        {{}, "The command '' is not known."},
        {{L"draw", L"a.las"}, "The command 'draw' is not known."},
        {{L"check"}, "Name at least one file."},
        {{L"check", L"--points", L"5", L"a.las"}, "The option '--points' is not known."},
        {{L"build", L"--factor", L"0", L"a.las"}, "--factor takes a number from 1 to 65535."},
        {{L"build", L"--factor=65536", L"a.las"}, "--factor takes a number from 1 to 65535."},
        {{L"build", L"--seed", L"18446744073709551616", L"a"}, "from 0 to 18446744073709551615."},
        {{L"build", L"--memory"}, "--memory takes a number from 16 to 1048576."},
        {{L"build", L"--order", L"none", L"a.las"}, "--order takes random | file."},
        {{L"show", L"--extent", L"1,2,3", L"a.las"}, "--extent takes four numbers"},
        {{L"show", L"--extent", L"1,2,3,4,", L"a.las"}, "--extent takes four numbers"},
        {{L"show", L"--extent", L"1,2,3,inf", L"a.las"}, "--extent takes four numbers"},
        {{L"show", L"--extent", L"3,2,1,4", L"a.las"}, "--extent takes four numbers"},
        {{L"show", L"--output", L"a.png", L"a.las", L"b.las"}, "--output needs a single file."},
        {{L"show", L"--output", L"a.las", L"a.qvr"}, "--output takes *.png."},
        {{L"show", L"a/t.las", L"b/T.laz"}, "would both be drawn as 'T.qvr.png'"},
    };
    for (const auto& c : cases) {
        const Ran ran = Companion(c.arguments);
        EXPECT_EQ(ran.code, kCompanionUsageError);
        EXPECT_THAT(ran.err, AllOf(HasSubstr(c.message), HasSubstr("usage: orvex-companion build")));
        EXPECT_THAT(ran.out, IsEmpty());
    }
    EXPECT_EQ(Companion({L"--help"}).code, kCompanionOk);
    EXPECT_EQ(Companion({L"show", L"--points", L"9", L"--help"}).code, kCompanionOk);
}

TEST_F(CompanionCommand, BuildsCompanionsAndReplacesThemOnlyWhenTold) {
    const std::wstring las = WriteLas(L"a.las");
    const Ran built = Companion({L"build", L"--order", L"file", L"--factor", L"20", las});
    EXPECT_EQ(built.code, kCompanionOk) << built.err;
    EXPECT_THAT(built.out,
                AllOf(HasSubstr("a.las: 400 points; QVR file 0.0 MB"), HasSubstr("a.qvr: built in")));
    EXPECT_THAT(Companion({L"check", L"--deep", las}).out, HasSubstr("thinning factor 20, file order."));
    const Ran again = Companion({L"build", las});
    EXPECT_EQ(again.code, kCompanionOk);
    EXPECT_THAT(again.out, HasSubstr("a.qvr: fresh; --overwrite builds it again."));

    WriteLas(L"a.las", 401);
    const std::string before = testing::ReadFile(folder_.Name(L"a.qvr"));
    const Ran refused = Companion({L"build", las});
    EXPECT_EQ(refused.code, kCompanionFailed);
    EXPECT_THAT(refused.err, HasSubstr("not overwritten without --overwrite"));
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"a.qvr")), before);
    EXPECT_EQ(Companion({L"build", L"--overwrite", las}, true).code, kCompanionInterrupted);
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"a.qvr")), before);
    EXPECT_EQ(Companion({L"build", L"--overwrite", L"--seed", L"7", las}).code, kCompanionOk);
    EXPECT_THAT(Companion({L"check", L"--deep", las}).out, HasSubstr("random order (seed 7)"));
    EXPECT_EQ(folder_.Entries(), 2U);
}

TEST_F(CompanionCommand, ChecksWhetherACompanionIsSoundAndHoldsThePoints) {
    const std::wstring las = WriteLas(L"a.las");
    EXPECT_THAT(Companion({L"check", las}).err, HasSubstr("a.las: there is no QVR file beside it."));
    const std::wstring qvr = testing::WriteQvrBeside(las);
    for (const std::wstring& name : {las, qvr}) {
        const Ran good = Companion({L"check", L"--deep", name});
        EXPECT_EQ(good.code, kCompanionOk) << good.err;
        EXPECT_THAT(good.out, AllOf(HasSubstr("a.qvr: fresh; 400 points"), HasSubstr("random order (seed 0)"),
                                    HasSubstr("a.las once.")));
    }
    // A change that neither size, time nor header show.
    const auto time = std::filesystem::last_write_time(ToPath(las));
    testing::WriteAt(las, 375 + 12, "\x7F");
    std::filesystem::last_write_time(ToPath(las), time);
    EXPECT_EQ(Companion({L"check", las}).code, kCompanionOk);
    const Ran other = Companion({L"check", L"--deep", las});
    EXPECT_EQ(other.code, kCompanionFailed);
    EXPECT_THAT(other.err, HasSubstr("does not hold the points of"));

    WriteLas(L"a.las", 401);
    const Ran stale = Companion({L"check", las});
    EXPECT_EQ(stale.code, kCompanionFailed);
    EXPECT_THAT(stale.err, HasSubstr("there were 400 points and are 401"));
    std::filesystem::remove(ToPath(las));
    const Ran alone = Companion({L"check", L"--deep", qvr});
    EXPECT_EQ(alone.code, kCompanionFailed);
    EXPECT_THAT(alone.out, HasSubstr("without its LAS file; 400 points"));
    EXPECT_THAT(alone.err, HasSubstr("the LAS file that it was built from is not beside it"));
}

TEST_F(CompanionCommand, GoesOnAfterAFileThatFails) {
    const std::wstring las = WriteLas(L"a.las");
    testing::WriteQvrBeside(las);
    const Ran ran = Companion({L"check", folder_.Write(L"b.qvr", "text"), folder_.Name(L"c.las"), las});
    EXPECT_EQ(ran.code, kCompanionFailed);
    EXPECT_THAT(ran.err, AllOf(HasSubstr("b.qvr' is not a QVR file"), HasSubstr("c.las' does not exist")));
    EXPECT_THAT(ran.out, HasSubstr("a.qvr: fresh"));
    EXPECT_EQ(Companion({L"check", las}, true).code, kCompanionInterrupted);
}

TEST_F(CompanionCommand, DrawsTheFirstPoints) {
    const std::wstring las = WriteLas(L"a.las");
    testing::WriteQvrBeside(las);
    const std::wstring png = folder_.Name(L"a.png");
    const auto show = [&](std::vector<std::wstring> arguments) {
        arguments.insert(arguments.begin(), L"show");
        arguments.insert(arguments.end(), {L"--width", L"100", L"--output", png, las});
        return Companion(arguments);
    };
    const Ran ran = show({L"--points", L"50"});
    EXPECT_EQ(ran.code, kCompanionOk) << ran.err;
    EXPECT_THAT(ran.out, AllOf(HasSubstr("a.png: 50 of 400 points, generations 0 to "),
                               HasSubstr("coloured by height")));
    EXPECT_EQ(QImage(ToQString(png)).size(), QSize(100, 100));
    EXPECT_THAT(show({L"--entries"}).out, HasSubstr("400 of 400 points"));
    // A tenth of each side; no more generations than the points allow.
    EXPECT_THAT(show({L"--extent", L"1000,2000,1001.9,2001.9", L"--colour", L"classification"}).out,
                AllOf(HasSubstr("a.png: 4 of 400 points"), HasSubstr("coloured by classification")));
    EXPECT_THAT(show({L"--extent", L"0,0,1,1"}).err, HasSubstr("no point to draw"));
    const Ran nowhere = Companion({L"show", L"--output", folder_.Name(L"no/a.png"), las});
    EXPECT_EQ(nowhere.code, kCompanionFailed);
    EXPECT_THAT(nowhere.err, HasSubstr("a.png' could not be written"));
    EXPECT_EQ(folder_.Entries(), 3U) << "nothing is left beside the picture";

    // A LAS file is one whatever its name.
    std::filesystem::rename(ToPath(las), ToPath(png));
    const std::string points = testing::ReadFile(png);
    const Ran over = Companion({L"show", L"--output", png, png});
    EXPECT_EQ(over.code, kCompanionFailed);
    EXPECT_THAT(over.err, HasSubstr("The picture would replace "));
    EXPECT_TRUE(testing::ReadFile(png) == points);
}

TEST(PointPicture, ShowsTheHigherOfTwoPointsAndCountsItsCells) {
    PointPicture picture({0, 0, 4, 2}, 64, 32);
    EXPECT_EQ(picture.Height(), 32);
    EXPECT_EQ(picture.CoveredCells(), 0);
    picture.Add({0.1, 0.1, 5}, 6);
    picture.Add({0.1, 0.1, 4}, 2);
    picture.Add({4, 2, 1}, 9);
    picture.Add({4.1, 0, 1}, 9);
    EXPECT_EQ(picture.PointCount(), 3U);
    EXPECT_EQ(picture.CoveredCells() * picture.CellColumns() * picture.CellRows(), 2);
    const QImage image = picture.Image(PointColour::Classification);
    EXPECT_EQ(image.pixel(1, 30), 0xffd1452fU) << "a building";
    EXPECT_EQ(image.pixel(63, 0), 0xff3277c8U) << "water";
    EXPECT_EQ(image.pixel(63, 31), image.pixel(32, 16)) << "nothing there";
    EXPECT_NE(picture.Image(PointColour::Height).pixel(1, 30),
              picture.Image(PointColour::Height).pixel(63, 0));
}

}  // namespace
}  // namespace orvex
