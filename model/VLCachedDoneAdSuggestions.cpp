#include "model/VLCachedDoneAdSuggestions.h"

#include "model/Schema.h"
#include "model/VLDoneAdSuggestion.h"

namespace velmora {

const Schema& VLCachedDoneAdSuggestions::schema() const {
    static constexpr Field fields[]{
        list<&VLCachedDoneAdSuggestions::doneAdSuggestions>("doneAdSuggestions"),
    };
    static constexpr Schema table(fields);
    return table;
}

}  // namespace velmora
