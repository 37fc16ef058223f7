#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DirectoryLister.h"

namespace pellak::fakes {

/// A tree in memory that answers like a file system. Build it first, then list it from any
/// thread; what was asked is counted.
class MemoryLister final : public DirectoryLister {
 public:
  struct Node {
    EntryAttributes attributes;
    bool refused = false;                  ///< opening it is denied
    bool recordRefused = false;            ///< reading its record is denied
    bool readFails = false;                ///< the bulk read gives entries and then an error
    std::optional<std::int64_t> own = {};  ///< bytes that are the file's alone; all when absent
    std::map<std::string, std::shared_ptr<Node>, std::less<>> children = {};
  };

  /// How listings answer, set before they begin.
  bool carriesAttributes = false;  ///< the bulk read gives attributes too
  bool tellsTypes = true;          ///< otherwise entries are of unknown type
  bool certain = true;             ///< the answer to `emptyIsCertain`
  bool shares = false;             ///< files may share their room
  std::size_t budget = 64;
  /// Called for each record that is asked for by its path; an error is the answer. Any thread.
  std::function<Result<void>(const std::string&)> perRecord;

  // Each adds the folders above it and returns the node, to be changed further.
  Node& folder(std::string_view percorso) { return add(percorso, EntryType::directory); }
  Node& file(std::string_view percorso, std::int64_t size);
  /// `meta`, when given, is where it points to, absolute.
  Node& link(std::string_view percorso, std::string_view meta = {});
  Node& other(std::string_view percorso) { return add(percorso, EntryType::other); }
  /// A second name for a file that is there.
  void hardLink(std::string_view percorso, std::string_view existing);

  Result<std::shared_ptr<DirectoryHandle>> open(std::string_view percorso) override;
  Result<EntryAttributes> attributes(std::string_view percorso) override;
  Result<std::string> resolve(std::string_view percorso) override;
  bool emptyIsCertain() const override { return certain; }
  std::size_t descriptorBudget() const override { return budget; }

  std::atomic<int> nameReads{0};  ///< name listings asked for
  std::atomic<int> readsNow{0};   ///< bulk reads going on
  std::atomic<int> mostReads{0};  ///< the most at once so far
  std::atomic<int> opened{0};     ///< handles ever made
  std::atomic<int> openNow{0};    ///< handles alive
  std::atomic<int> mostOpen{0};
  std::atomic<int> readMillis{0};  ///< each bulk read takes so long

 private:
  Node& add(std::string_view percorso, EntryType type);
  std::shared_ptr<Node> find(std::string_view percorso) const;

  std::shared_ptr<Node> root_ =
      std::make_shared<Node>(Node{.attributes = {.type = EntryType::directory, .mode = 0040755}});
  std::map<std::string, std::string> links_;
  std::uint64_t lastIno_ = 1;
};

}  // namespace pellak::fakes
