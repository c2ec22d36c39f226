// NewFile.h -- a file that is written beside the place where it is to appear, and moved there when it is whole.

#ifndef CFGMIG_LIBCFGSTORE_NEWFILE_H
#define CFGMIG_LIBCFGSTORE_NEWFILE_H

#include <span>
#include <string>
#include <string_view>

#include "FileAttributes.h"
#include "FileError.h"
#include "FileNames.h"
#include "FileSystem.h"
#include "OpenFile.h"

namespace cfgstore {

// True when the file holds exactly the pieces, laid end to end. Throws FileError when it cannot be read.
bool holdsContent(FileSystem& fileSystem, int file, std::span<const std::string_view> pieces);

// While it is written, the file is locked and its owner only may read it. It is removed again unless it was put in
// place. All functions throw FileError.
//
// Until it is in place it bears a mark, kUnfinishedMark, by which the next program knows what one that was killed has
// left. A file of the same name without the mark is somebody else's: it is not touched, and an error. Where files
// cannot be marked, the name is taken as the mark.
class NewFile {
 public:
  // `path` is where the file is written: a name that nothing but this class uses. What is left there of a program
  // that was killed is removed; one that a program is working on is an error.
  NewFile(FileSystem& fileSystem, std::string path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Removes what a program that was killed has left at `path`. Throws FileInUse when a program is working on it, and
  // FileError for what is none of ours.
  static void clearLeftover(FileSystem& fileSystem, const std::string& path);
  // What clearLeftover would throw for the file there, without removing anything.
  static void checkLeftover(FileSystem& fileSystem, const std::string& path);

  int file() const { return m_file.get(); }

  // Writes the pieces, gives the file these attributes, brings it to the disk and reads it back. What cannot be given
  // and what there is no room for is found before the first byte is written. Nobody who may not read a file with these
  // attributes may read this one at any moment.
  void make(std::span<const std::string_view> pieces, const FileAttributes& attributes);

  // Moves the file to its place. replace: whatever file is there. placeNew: only if nothing is there.
  void replace(const std::string& target);
  void placeNew(const std::string& target);

 private:
  void create();
  void protect();
  void setOwner(const FileOwner& owner);
  void setAttribute(const ExtendedAttribute& attribute);
  void reserve(std::size_t size);
  void setAccess(const FileAttributes& attributes);
  void write(std::span<const std::string_view> pieces);
  void writeAll(std::string_view text);
  void check(std::span<const std::string_view> pieces);
  void isInPlace();

  FileSystem& m_fileSystem;
  std::string m_path;
  OpenFile m_file;
  bool m_mine = false;  // the file at m_path is ours to remove
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_NEWFILE_H
