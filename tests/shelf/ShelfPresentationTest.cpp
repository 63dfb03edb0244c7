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
