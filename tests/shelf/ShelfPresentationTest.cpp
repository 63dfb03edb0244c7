#include <gtest/gtest.h>

#include "shelf/ShelfPresentation.h"

using mosswick::ShelfPresentation;

namespace {

ShelfPresentation summoned(bool hasContent) {
    ShelfPresentation p;
    p.isSummoned = true;
    p.hasContent = hasContent;
    return p;
}

struct ContentCase {
    const char* name;
    ShelfPresentation before;
    bool nowHasContent;
    bool hideWhenEmpty;
    bool expectedKeepsEmptyShelfUp;
    bool expectedSuppressed;
};

void PrintTo(const ContentCase& row, std::ostream* os) { *os << row.name; }

ShelfPresentation with(ShelfPresentation p, bool ShelfPresentation::*flag) {
    p.*flag = true;
    return p;
}

class ContentChanged : public ::testing::TestWithParam<ContentCase> {};

TEST_P(ContentChanged, KeepsOrLetsGoOfTheShelf) {
    const ContentCase& c = GetParam();
    ShelfPresentation p = c.before;
    p.contentChanged(c.nowHasContent, c.hideWhenEmpty);
    EXPECT_EQ(p.hasContent, c.nowHasContent);
    EXPECT_EQ(p.keepsEmptyShelfUp, c.expectedKeepsEmptyShelfUp);
    EXPECT_EQ(p.isSuppressed, c.expectedSuppressed);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ContentChanged,
    ::testing::Values(
        ContentCase{"lastItemLeavesSummonedShelfKeptEmpty", summoned(true), false, false, true, false},
        ContentCase{"lastItemLeavesSummonedShelfHiddenWhenEmpty", summoned(true), false, true, false, false},
        ContentCase{"lastItemLeavesShelfUpOnlyForItsContent", with({}, &ShelfPresentation::hasContent), false,
                    false, true, false},
        ContentCase{"lastItemLeavesSuppressedShelf",
                    with(with({}, &ShelfPresentation::hasContent), &ShelfPresentation::isSuppressed), false,
                    false, false, true},
        ContentCase{"contentArrivingLiftsSuppression", with({}, &ShelfPresentation::isSuppressed), true, true,
                    false, false},
        ContentCase{"contentArrivingClearsKeepUp", with({}, &ShelfPresentation::keepsEmptyShelfUp), true,
                    false, false, false},
        ContentCase{"stillEmptyChangesNothing", with({}, &ShelfPresentation::isSuppressed), false, false,
                    false, true},
        ContentCase{"stillFullKeepsSuppression",
                    with(with({}, &ShelfPresentation::hasContent), &ShelfPresentation::isSuppressed), true,
                    false, false, true}),
    [](const auto& row) { return row.param.name; });

TEST(ShelfPresentation, WantsToBeShownForAnyReasonUnlessSuppressed) {
    EXPECT_FALSE(ShelfPresentation{}.wantsToBeShown());
    for (bool ShelfPresentation::*reason :
         {&ShelfPresentation::isDragging, &ShelfPresentation::isSummoned, &ShelfPresentation::isPreviewing,
          &ShelfPresentation::hasContent, &ShelfPresentation::keepsEmptyShelfUp}) {
        EXPECT_TRUE(with({}, reason).wantsToBeShown());
        EXPECT_FALSE(with(with({}, reason), &ShelfPresentation::isSuppressed).wantsToBeShown());
    }
}

}  // namespace

namespace {

// Flags written as letters: d(ragging) s(ummoned) p(reviewing) c(ontent) k(eeps empty up)
// x (suppressed).
ShelfPresentation flags(const char* letters) {
    ShelfPresentation p;
    for (const char* c = letters; *c; ++c) {
        switch (*c) {
            case 'd':
                p.isDragging = true;
                break;
            case 's':
                p.isSummoned = true;
                break;
            case 'p':
                p.isPreviewing = true;
                break;
            case 'c':
                p.hasContent = true;
                break;
            case 'k':
                p.keepsEmptyShelfUp = true;
                break;
            case 'x':
                p.isSuppressed = true;
                break;
            default:
                ADD_FAILURE() << "unknown flag " << *c;
        }
    }
    return p;
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

using P = ShelfPresentation;
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
