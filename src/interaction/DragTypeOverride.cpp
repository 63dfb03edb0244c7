#include "interaction/DragTypeOverride.h"

#include <algorithm>

namespace mosswick {

DragTypeOverride::Answer DragTypeOverride::answer(const DragPayload::Types& types, const QByteArray& target,
                                                  bool bridged) {
    const auto offered = std::find_if(types.begin(), types.end(),
                                      [&](const auto& type) { return type.first.toLatin1() == target; });
    const bool isOffered = offered != types.end();
    // Qt answers a text that was chosen itself (it knows how to hand over a long one in parts).
    if (target == DragPayload::kPlainText && !isOffered) return {Answer::Kind::refusal, {}};
    if (bridged && isOffered) return {Answer::Kind::bytes, offered->second};
    if (target == DragPayload::kMozUrl && isOffered) return {Answer::Kind::bytes, offered->second};
    return {};
}

}  // namespace mosswick
