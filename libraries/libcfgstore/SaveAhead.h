// SaveAhead.h -- a save of which all that takes long is done while it is not known yet whether it will happen.

#ifndef CFGMIG_LIBCFGSTORE_SAVEAHEAD_H
#define CFGMIG_LIBCFGSTORE_SAVEAHEAD_H

#include <memory>
#include <string>

#include "ConfigStore.h"

namespace cfgstore {

// ConfigStore::save in two steps. In between the target is as it was, and locked; the new file stands beside it, and
// goes again with this object unless it was put in place. The store must outlive it and must not be written to.
class SaveAhead {
 public:
  // Whatever ConfigStore::save does before it puts the new file in place. May be done in another thread beside reading
  // operations. Throws what save throws.
  SaveAhead(ConfigStore& store, const std::string& target, unsigned permissions = 07777);
  ~SaveAhead();
  SaveAhead(const SaveAhead&) = delete;
  SaveAhead& operator=(const SaveAhead&) = delete;

  // That of SaveResult; known from the beginning.
  const std::string& recoveredPath() const;

  // Puts the file in place. To be called once. Throws what save throws.
  SaveResult finish(Backup backup);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SAVEAHEAD_H
