#include "model/VLSerializedModel.h"

#include "model/RecordOutput.h"
#include "model/Schema.h"

namespace velmora {

Keys VLSerializedModel::keys() const { return schema().keys(*this); }

void VLSerializedModel::setValue(const Value&, std::string_view) noexcept {}

Dictionary VLSerializedModel::dictionaryWithValuesForKeys(const Keys& keys, const Storage& storage) const {
    return recordToDictionary(*this, keys, storage);
}

void VLSerializedModel::setValuesForKeysWithDictionary(const Dictionary* dictionary) {
    dictionary != nullptr ? schema().read(*this, *dictionary) : schema().read(*this, Dictionary());
}

}  // namespace velmora
