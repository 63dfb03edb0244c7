#include <gtest/gtest.h>

#include <string>

#include "shelf/ShelfPresentation.h"

using mosswick::ShelfPresentation;
using P = ShelfPresentation;

namespace {

// Flags written as letters: d(ragging) s(ummoned) p(reviewing) c(ontent) k(eeps empty up)
// x (suppressed).
ShelfPresentation flags(const std::string& letters) {
    ShelfPresentation p;
    for (const char c : letters) {
        bool ShelfPresentation::*flag = c == 'd'   ? &P::isDragging
                                        : c == 's' ? &P::isSummoned
                                        : c == 'p' ? &P::isPreviewing
                                        : c == 'c' ? &P::hasContent
                                        : c == 'k' ? &P::keepsEmptyShelfUp
                                        : c == 'x' ? &P::isSuppressed
                                                   : nullptr;
        if (flag)
            p.*flag = true;
        else
            ADD_FAILURE() << "unknown flag " << c;
    }
    return p;
}

struct ContentCase {
    const char* name;
    const char* before;
    bool nowHasContent;
    bool hideWhenEmpty;
    const char* after;
};

class ContentChanged : public ::testing::TestWithParam<ContentCase> {};

TEST_P(ContentChanged, KeepsOrLetsGoOfTheShelf) {
    ShelfPresentation p = flags(GetParam().before);
    p.contentChanged(GetParam().nowHasContent, GetParam().hideWhenEmpty);
    EXPECT_EQ(p, flags(GetParam().after));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ContentChanged,
    ::testing::Values(ContentCase{"lastItemLeavesSummonedShelfKeptEmpty", "sc", false, false, "sk"},
                      ContentCase{"lastItemLeavesSummonedShelfHiddenWhenEmpty", "sc", false, true, "s"},
                      ContentCase{"lastItemLeavesShelfUpOnlyForItsContent", "c", false, false, "k"},
                      ContentCase{"lastItemLeavesSuppressedShelf", "cx", false, false, "x"},
                      ContentCase{"contentArrivingLiftsSuppression", "x", true, true, "c"},
                      ContentCase{"contentArrivingClearsKeepUp", "k", true, false, "c"},
                      ContentCase{"stillEmptyChangesNothing", "x", false, false, "x"},
                      ContentCase{"stillFullKeepsSuppression", "cx", true, false, "cx"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ShelfPresentation, WantsToBeShownForAnyReasonUnlessSuppressed) {
    EXPECT_FALSE(ShelfPresentation{}.wantsToBeShown());
    for (const std::string reason : {"d", "s", "p", "c", "k"}) {
        EXPECT_TRUE(flags(reason).wantsToBeShown()) << reason;
        EXPECT_FALSE(flags(reason + "x").wantsToBeShown()) << reason;
    }
}

struct TransitionRow {
    const char* name;
    const char* before;
    void (ShelfPresentation::*transition)();
    const char* after;
};

class Transitions : public ::testing::TestWithParam<TransitionRow> {};

TEST_P(Transitions, ChangeExactlyTheirFlags) {
    ShelfPresentation p = flags(GetParam().before);
    (p.*GetParam().transition)();
    EXPECT_EQ(p, flags(GetParam().after));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Transitions,
    ::testing::Values(TransitionRow{"summonLiftsTheVetoAndEndsAPreview", "cpx", &P::summon, "cs"},
                      TransitionRow{"dismissDropsEveryReasonButContent", "dspck", &P::dismiss, "cx"},
                      TransitionRow{"toggleDismissesAShownShelf", "c", &P::toggle, "cx"},
                      TransitionRow{"toggleSummonsASuppressedOne", "cx", &P::toggle, "cs"},
                      TransitionRow{"toggleSummonsAnEmptyOne", "", &P::toggle, "s"},
                      TransitionRow{"dragBeganLiftsTheVeto", "x", &P::dragBegan, "d"},
                      TransitionRow{"dragEndedKeepsTheRest", "dsc", &P::dragEnded, "sc"},
                      TransitionRow{"previewLiftsTheVeto", "cx", &P::startPreview, "cp"},
                      TransitionRow{"previewEnds", "sp", &P::endPreview, "s"},
                      TransitionRow{"emptyShelvesHide", "sk", &P::emptyShelvesHide, "s"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ShelfPresentation, StartsHiddenWithWhateverTheShelfHolds) {
    ShelfPresentation p = flags("dspk");
    p.resetHidden(true);
    EXPECT_EQ(p, flags("cx"));
    p.resetHidden(false);
    EXPECT_EQ(p, flags("x"));
}

}  // namespace
