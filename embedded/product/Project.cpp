#include "embedded/product/Project.h"

#include <utility>

#include "host/ProjectScale.h"

namespace quoin::product {

CVariantData ModelNode::GetProperty(std::int32_t propertyId) const {
  ++m_reads;
  const auto found = m_properties.find(propertyId);
  return found == m_properties.end() ? CVariantData() : found->second;
}

void ModelNode::setProperty(std::int32_t propertyId, const CVariantData& value) {
  m_properties[propertyId] = value;
}

Project::Project(std::wstring name, double scale)
    : m_name(std::move(name)), m_root(std::make_unique<ModelNode>(ROOT_MODEL, this)) {
  setScale(scale);
}

Project::~Project() = default;

void Project::setScale(double scale) {
  m_root->setProperty(kProjectScaleProperty, CVariantData(scale));
}

double Project::scale() const {
  return m_root->GetProperty(kProjectScaleProperty);
}

ModelNode& Project::addNode(std::int32_t type) {
  return *m_nodes.emplace_back(std::make_unique<ModelNode>(type, this));
}

ProjectManager::ProjectManager() = default;
ProjectManager::~ProjectManager() = default;

Project& ProjectManager::open(std::wstring name, double scale) {
  m_current = m_projects.emplace_back(std::make_unique<Project>(std::move(name), scale)).get();
  return *m_current;
}

void ProjectManager::close(Project& project) {
  const bool wasCurrent = m_current == &project;
  std::erase_if(m_projects, [&](const auto& entry) { return entry.get() == &project; });
  if (wasCurrent) {
    m_current = m_projects.empty() ? nullptr : m_projects.back().get();
  }
}

}  // namespace quoin::product
