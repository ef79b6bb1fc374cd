#include "embedded/product/EntityMapping.h"

namespace quoin::product {

EntityMapping::~EntityMapping() = default;

AcDbObjectId EntityMapping::GetEntityId(const IModelNode* node) const {
  const auto found = m_entities.find(node);
  return found == m_entities.end() ? AcDbObjectId::kNull : found->second;
}

void EntityMapping::map(const IModelNode& node, const AcDbObjectId& entity) {
  if (entity.isNull()) {
    m_entities.erase(&node);
  } else {
    m_entities[&node] = entity;
  }
}

EntityMapping& EntityMappings::under(ModelMapKey key) {
  std::unique_ptr<EntityMapping>& place = m_mappings[key];
  if (!place) {
    place = std::make_unique<EntityMapping>();
  }
  return *place;
}

}  // namespace quoin::product
