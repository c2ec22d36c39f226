// LeakCheck.cpp -- what a build with the address sanitizer must know about this program.
//
// By the contract between the two, the library frees the strings of the value lists that the store hands out and leaves
// the array blocks alone. The leak checker would report these blocks, and only these are excused.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CFGMIG_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define CFGMIG_ADDRESS_SANITIZER
#endif

#ifdef CFGMIG_ADDRESS_SANITIZER
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:cfgstore::newListBlock\n"; }

// Without it, every run would end with a list of what was excused.
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }
#endif
