// Writing a file of pages. Pages of the objects that did not change stay where they are; the others
// and those of a changed section get new places, the former ones become gaps. The two maps are
// written anew, the page map as the last page; behind it follows the copy of the file header.
#include <algorithm>
#include <map>
#include <set>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/Lz77.h"
#include "embedded/dwg/container/PagedFile.h"

namespace quoin::dwg::container {
namespace {

constexpr std::uint32_t kLeastPageSize = 0x40;

/// The room of the file by place: pages, and the gaps between them.
class Room {
 public:
  /// The pages of the two maps go, and what numbers they had does not count.
  Room(const std::vector<PageSlot>& slots, const PagedHeader& header) {
    for (PageSlot slot : slots) {
      if (slot.number == header.pageMap || slot.number == header.sectionMap) {
        slot.number = 0;
      }
      m_slots.emplace(slot.place, slot);
      if (slot.number != 0) {
        m_placeOf[slot.number] = slot.place;
        m_largest = std::max(m_largest, slot.number);
      }
    }
  }

  /// Makes a page's slot a gap.
  void free(std::uint32_t number) {
    const auto place = m_placeOf.find(number);
    if (place == m_placeOf.end()) {
      throw Damage("a page is missing");
    }
    m_slots[place->second].number = 0;
    m_placeOf.erase(place);
  }

  /// Call when all pages that go are gone: gaps become one with their neighbours, and the one at
  /// the end is dropped.
  void close() {
    std::map<std::uint64_t, PageSlot> merged;
    m_end = kPagesBegin;
    for (const auto& [place, slot] : m_slots) {
      if (slot.number == 0 && !merged.empty() && merged.rbegin()->second.number == 0) {
        merged.rbegin()->second.size += slot.size;
      } else if (slot.size > 0) {
        merged.emplace(place, slot);
      }
    }
    if (!merged.empty() && merged.rbegin()->second.number == 0) {
      merged.erase(std::prev(merged.end()));
    }
    m_slots = std::move(merged);
    for (const auto& [place, slot] : m_slots) {
      m_end = place + slot.size;
      if (slot.number == 0) {
        m_gaps.emplace(slot.size, place);
      }
    }
  }

  /// Gives a page the smallest gap that has room for it, else the end; returns its place.
  std::uint64_t settle(std::uint32_t number, std::uint64_t size) {
    const auto gap = m_gaps.lower_bound({size, 0});
    if (gap == m_gaps.end()) {
      return settleAtEnd(number, size);
    }
    const auto [gapSize, place] = *gap;
    m_gaps.erase(gap);
    m_slots[place] = {number, place, size};
    if (gapSize > size) {
      m_slots[place + size] = {0, place + size, gapSize - size};
      m_gaps.emplace(gapSize - size, place + size);
    }
    return place;
  }

  std::uint64_t settleAtEnd(std::uint32_t number, std::uint64_t size) {
    const std::uint64_t place = m_end;
    m_slots[place] = {number, place, size};
    m_end += size;
    return place;
  }

  std::uint32_t newNumber() { return ++m_largest; }
  std::uint64_t end() const { return m_end; }
  std::vector<PageSlot> slots() const {
    std::vector<PageSlot> all;
    for (const auto& [place, slot] : m_slots) {
      all.push_back(slot);
    }
    return all;
  }

 private:
  std::map<std::uint64_t, PageSlot> m_slots;
  std::unordered_map<std::uint32_t, std::uint64_t> m_placeOf;
  std::set<std::pair<std::uint64_t, std::uint64_t>> m_gaps;  // size and place
  std::uint64_t m_end = 0;
  std::uint32_t m_largest = 0;
};

struct NewPage {
  std::uint32_t number = 0;
  DataPageHeader header;
  std::string data;  // packed
};

/// The objects with their changes, page by page.
class ChangedObjects {
 public:
  ChangedObjects(std::string_view old, const ContainerChanges& changes)
      : m_old(old), m_changes(changes) {}

  std::uint64_t size() const { return m_old.size() + m_changes.appended.size(); }

  /// The offsets of the pages that change.
  std::set<std::uint64_t> changedPages(std::uint64_t pageSize) const {
    std::set<std::uint64_t> pages;
    const auto add = [&](std::uint64_t begin, std::uint64_t end) {
      for (std::uint64_t page = begin / pageSize * pageSize; page < end; page += pageSize) {
        pages.insert(page);
      }
    };
    for (const ContainerChanges::Patch& patch : m_changes.patches) {
      add(patch.place, patch.place + patch.bytes.size());
    }
    if (!m_changes.appended.empty()) {
      add(m_old.size(), size());
    }
    return pages;
  }

  std::string page(std::uint64_t offset, std::uint64_t pageSize) const {
    std::string bytes(static_cast<std::size_t>(pageSize), '\0');
    overlay(bytes, offset, 0, m_old);
    const auto first =
        std::lower_bound(m_changes.patches.begin(), m_changes.patches.end(), offset,
                         [](const ContainerChanges::Patch& patch, std::uint64_t begin) {
                           return patch.place + patch.bytes.size() <= begin;
                         });
    for (auto patch = first; patch != m_changes.patches.end() && patch->place < offset + pageSize;
         ++patch) {
      overlay(bytes, offset, patch->place, patch->bytes);
    }
    overlay(bytes, offset, m_old.size(), m_changes.appended);
    return bytes;
  }

 private:
  /// Writes what of `bytes`, which stand at `place`, belongs to the page at `offset`.
  static void overlay(std::string& page, std::uint64_t offset, std::uint64_t place,
                      std::string_view bytes) {
    const std::uint64_t begin = std::max(offset, place);
    const std::uint64_t end = std::min(offset + page.size(), place + bytes.size());
    if (begin < end) {
      const auto size = static_cast<std::size_t>(end - begin);
      page.replace(static_cast<std::size_t>(begin - offset), size, bytes,
                   static_cast<std::size_t>(begin - place), size);
    }
  }

  std::string_view m_old;
  const ContainerChanges& m_changes;
};

class PagedWriter {
 public:
  PagedWriter(std::string_view file, const PagedHeader& header, const std::vector<PageSlot>& slots,
              const SectionMap& map, std::string_view rest)
      : m_file(file), m_header(header), m_map(map), m_rest(rest), m_room(slots, header) {}

  std::string run(std::string_view objects, const ContainerChanges& changes) {
    changeObjects({objects, changes});
    if (changes.isMapChanged) {
      replace(SectionName::Handles, changes.objectMap);
    }
    if (changes.header) {
      replace(SectionName::Header, *changes.header);
    }
    if (changes.classes) {
      replace(SectionName::Classes, *changes.classes);
    }
    if (changes.templateSection) {
      replace(SectionName::Template, *changes.templateSection);
    }
    m_room.close();
    return assemble();
  }

 private:
  SectionEntry& entry(SectionName name) {
    for (SectionEntry& section : m_map.sections) {
      if (section.name() == sectionText(name)) {
        if (section.pageSize < kLeastPageSize) {
          break;
        }
        return section;
      }
    }
    throw Damage("the section " + std::string(sectionText(name)) + " is missing");
  }

  void changeObjects(const ChangedObjects& objects) {
    SectionEntry& section = entry(SectionName::Objects);
    std::map<std::uint64_t, SectionPage> pages;
    for (const SectionPage& page : section.pages) {
      pages[page.offset] = page;
      if (page.offset % section.pageSize != 0) {
        throw Damage("the pages of the objects have unusual sizes");
      }
    }
    for (const std::uint64_t offset : objects.changedPages(section.pageSize)) {
      SectionPage& page = pages[offset];
      if (page.number != 0) {
        m_room.free(page.number);
      }
      page = newPage(section, offset, objects.page(offset, section.pageSize), page.number);
    }
    section.size = objects.size();
    section.pages.clear();
    for (const auto& [offset, page] : pages) {
      section.pages.push_back(page);
    }
  }

  void replace(SectionName name, std::string_view bytes) {
    SectionEntry& section = entry(name);
    const std::vector<SectionPage> old = std::exchange(section.pages, {});
    for (const SectionPage& page : old) {
      m_room.free(page.number);
    }
    section.size = bytes.size();
    for (std::size_t offset = 0; offset < bytes.size(); offset += section.pageSize) {
      std::string page(bytes.substr(offset, section.pageSize));
      page.resize(section.pageSize);
      const std::size_t index = section.pages.size();
      section.pages.push_back(
          newPage(section, offset, page, index < old.size() ? old[index].number : 0));
    }
  }

  /// `number` is that of the page that it replaces, 0 for none.
  SectionPage newPage(const SectionEntry& section, std::uint64_t offset, const std::string& bytes,
                      std::uint32_t number) {
    NewPage page;
    page.number = number;
    page.data = section.packing == kPackedLz77 ? packLz77(bytes) : bytes;
    page.header.section = section.id;
    page.header.size = static_cast<std::uint32_t>(page.data.size());
    page.header.slotSize =
        static_cast<std::uint32_t>(alignedSize(kDataHeaderSize + page.data.size()));
    page.header.offset = offset;
    page.header.dataSum = pageChecksum(0, page.data);
    page.header.headerSum = headerSumOf(page.header);
    if (number == 0) {
      page.number = m_room.newNumber();
    }
    m_pages.push_back(std::move(page));
    return {m_pages.back().number, m_pages.back().header.size, offset};
  }

  void write(std::string& out, std::uint64_t place, std::string_view bytes) {
    const auto at = static_cast<std::size_t>(place);
    out.resize(std::max(out.size(), at + bytes.size()));
    out.replace(at, bytes.size(), bytes);
  }

  std::string assemble() {
    std::string out(m_file.substr(0, static_cast<std::size_t>(m_room.end())));
    const std::string padding = paddingBytes(kPageAlignment);
    for (const NewPage& page : m_pages) {
      const std::uint64_t place = m_room.settle(page.number, page.header.slotSize);
      std::string bytes = dataPageHeaderBytes(page.header, place) + page.data;
      bytes.append(padding, 0, page.header.slotSize - bytes.size());
      write(out, place, bytes);
    }
    m_header.sectionMap = m_room.newNumber();
    std::string map = systemPageBytes(kSectionMapType, sectionMapContents(m_map));
    map.append(padding, 0, static_cast<std::size_t>(alignedSize(map.size())) - map.size());
    write(out, m_room.settle(m_header.sectionMap, map.size()), map);
    writePageMap(out);
    return out;
  }

  void writePageMap(std::string& out) {
    m_header.pageMap = m_header.lastPage = m_header.largestPage = m_room.newNumber();
    // The map tells its own size, so that is settled before the map can be packed.
    const std::uint64_t place = m_room.settleAtEnd(m_header.pageMap, 0);
    std::vector<PageSlot> slots = m_room.slots();
    PageSlot& own = slots.back();
    own.size = alignedSize(mostSystemPageBytes(pageMapContents(slots, m_header).size()) +
                           kSystemHeaderSize + kPagedHeaderSize);
    const std::string map = systemPageBytes(kPageMapType, pageMapContents(slots, m_header));
    m_header.pageMapPlace = place - kPagesBegin;
    m_header.pagesEnd = place + own.size - kPagesBegin;
    m_header.copyPlace = place + map.size() + kSystemHeaderSize;
    const std::string header = pagedHeaderBytes(m_header);
    write(out, place, map);
    out.resize(static_cast<std::size_t>(place) + map.size());
    out += emptyPageMapHeader();
    out += header;
    out += m_rest;
    write(out, kPagedHeaderPlace, header);
  }

  std::string_view m_file;
  PagedHeader m_header;
  SectionMap m_map;
  std::string_view m_rest;
  Room m_room;
  std::vector<NewPage> m_pages;
};

}  // namespace

std::string PagedFile::written(const ContainerChanges& changes) const {
  return PagedWriter(m_bytes, m_header, m_slots, m_map, m_rest).run(objects(), changes);
}

}  // namespace quoin::dwg::container
