// The entity-to-model mapping: which drawing entity represents which node of a model. There is
// one map for every key that nodes name; it is made when it is first asked for.
#pragma once

#include <map>
#include <memory>

#include "dbid.h"
#include "host/ProjectModel.h"

namespace quoin::product {

class HOST_API EntityMapping : public IEntityModelMapping {
 public:
  virtual ~EntityMapping();

  AcDbObjectId GetEntityId(const IModelNode* node) const override;

  /// Makes an entity represent a node, in place of any earlier one; the null id takes the
  /// node out.
  void map(const IModelNode& node, const AcDbObjectId& entity);

 private:
  std::map<const IModelNode*, AcDbObjectId> m_entities;
};

class HOST_API EntityMappings {
 public:
  /// The map under this key; stays where it is as long as the platform runs.
  EntityMapping& under(ModelMapKey key);
  /// Drops the map under this key; nothing may hold it any more.
  void drop(ModelMapKey key) { m_mappings.erase(key); }
  /// Makes an entity represent a node in the node's own map.
  void map(const IModelNode& node, const AcDbObjectId& entity) {
    under(node.GetMapKey()).map(node, entity);
  }

 private:
  std::map<ModelMapKey, std::unique_ptr<EntityMapping>> m_mappings;
};

}  // namespace quoin::product
