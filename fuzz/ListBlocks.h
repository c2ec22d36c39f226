// ListBlocks.h -- the array blocks of value lists, which the library may leave behind.

#ifndef CFGMIG_FUZZ_LISTBLOCKS_H
#define CFGMIG_FUZZ_LISTBLOCKS_H

namespace fuzz {

// Frees the array blocks that the store has handed out and nobody has freed. After it libFuzzer finds every byte that
// is left behind and should not be, and memory does not grow with the number of inputs. A replay needs neither: there
// it does nothing.
void releaseListBlocks();

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_LISTBLOCKS_H
