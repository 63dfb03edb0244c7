#include "model/PreferenceEnums.h"

namespace mosswick {

const std::array<EnumCase<ShelfPosition>, 6> EnumCases<ShelfPosition>::all = {{
    {ShelfPosition::leftTop, "leftTop", "Left Edge, Top"},
    {ShelfPosition::leftCenter, "leftCenter", "Left Edge, Center"},
    {ShelfPosition::leftBottom, "leftBottom", "Left Edge, Bottom"},
    {ShelfPosition::rightTop, "rightTop", "Right Edge, Top"},
    {ShelfPosition::rightCenter, "rightCenter", "Right Edge, Center"},
    {ShelfPosition::rightBottom, "rightBottom", "Right Edge, Bottom"},
}};

const std::array<EnumCase<ShelfSize>, 5> EnumCases<ShelfSize>::all = {{
    {ShelfSize::standard, "standard", "Standard (3 Items)"},
    {ShelfSize::biggest, "biggest", "Biggest"},
    {ShelfSize::smallest, "smallest", "Smallest"},
    {ShelfSize::adaptiveStandard, "adaptiveStandard", "Adjust Automatically (3 Items)"},
    {ShelfSize::adaptiveSmallest, "adaptiveSmallest", "Adjust Automatically (Smallest)"},
}};

const std::array<EnumCase<AppearanceMode>, 3> EnumCases<AppearanceMode>::all = {{
    {AppearanceMode::system, "system", "System Appearance"},
    {AppearanceMode::light, "light", "Light"},
    {AppearanceMode::dark, "dark", "Dark"},
}};

const std::array<EnumCase<ShowTrigger>, 3> EnumCases<ShowTrigger>::all = {{
    {ShowTrigger::dragStarts, "dragStarts", "\u2026when a drag starts"},
    {ShowTrigger::dragStartsAtCursor, "dragStartsAtCursor", "\u2026when a drag starts, at cursor position"},
    {ShowTrigger::dragToScreenEdge, "dragToScreenEdge", "\u2026when dragging to the edge of the screen"},
}};

const std::array<EnumCase<AlternateDragData>, 4> EnumCases<AlternateDragData>::all = {{
    {AlternateDragData::none, "none", "no alternate"},
    {AlternateDragData::filePath, "filePath", "the file path as"},
    {AlternateDragData::fileName, "fileName", "the file name as"},
    {AlternateDragData::fileContents, "fileContents", "the text contents as"},
}};

}  // namespace mosswick
