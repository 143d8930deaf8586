#include "model/VLSerializedModel.h"

#include "model/RecordOutput.h"
#include "model/Schema.h"

namespace velmora {

Keys VLSerializedModel::keys() const { return schema().keys(*this); }

void VLSerializedModel::setValue(const Value&, std::string_view) noexcept {}

Dictionary VLSerializedModel::dictionaryWithValuesForKeys(const Keys& keys) const {
    return recordToDictionary(*this, keys);
}

void VLSerializedModel::setValuesForKeysWithDictionary(Dictionary* dictionary) {
    Dictionary none;
    schema().read(*this, dictionary != nullptr ? *dictionary : none);
}

}  // namespace velmora
