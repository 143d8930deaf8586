#include "model/Schema.h"

namespace velmora {

Keys Schema::keys(const VLSerializedModel& model) const {
    Keys names;
    names.reserve(fields_.size());
    for (const auto& field : fields_) {
        if (lists(field, model)) names.push_back(field.name);
    }
    return names;
}

void Schema::write(const VLSerializedModel& model, const Keys& keys, RecordOutput& output) const {
    for (const auto& field : fields_) {
        if (field.kind != Field::Kind::plain) field.write(model, field.key, output);
    }
    std::size_t expected = 0;
    for (const auto key : keys) {
        const auto* field = find(key, expected);
        if (field != nullptr && field->kind == Field::Kind::plain) field->write(model, field->key, output);
    }
}

void Schema::write(const VLSerializedModel& model, RecordOutput& output) const {
    for (const auto& field : fields_) {
        if (field.kind != Field::Kind::plain) field.write(model, field.key, output);
    }
    for (const auto& field : fields_) {
        if (field.kind == Field::Kind::plain && lists(field, model)) field.write(model, field.key, output);
    }
}

void Schema::read(VLSerializedModel& model, Dictionary& input) const {
    for (const auto& field : fields_) {
        if (field.kind != Field::Kind::plain)
            field.read(model, input.if_contains(schema_detail::json(field.key)));
    }
    std::size_t expected = 0;
    for (auto& entry : input) {
        const std::string_view key(entry.key().data(), entry.key().size());
        const auto* field = find(key, expected);
        if (field == nullptr) {
            model.setValue(entry.value(), key);
        } else if (field->assign != nullptr) {
            field->assign(model, entry.value());
        }
    }
}

bool Schema::lists(const Field& field, const VLSerializedModel& model) const {
    return listed_ == Listed::all || field.isPresent(model);
}

const Field* Schema::find(std::string_view name, std::size_t& expected) const noexcept {
    // Entries mostly come in the order of the table.
    for (std::size_t tried = 0; tried < fields_.size(); ++tried, ++expected) {
        if (expected >= fields_.size()) expected = 0;
        if (fields_[expected].name == name) return &fields_[expected++];
    }
    return nullptr;
}

}  // namespace velmora
