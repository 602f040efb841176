#include "support/files.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace testsupport {

void WriteFile(const std::filesystem::path& file, const std::string& content, mode_t mode) {
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << content;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + file.string());
  chmod(file.c_str(), mode);
}

void WriteScript(const std::filesystem::path& file, const std::string& body, mode_t mode) {
  WriteFile(file, "#!/bin/sh\n" + body + "\n", mode);
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string RunAndCapture(const std::string& command) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return output;
  std::array<char, 4096> chunk{};
  size_t n;
  while ((n = fread(chunk.data(), 1, chunk.size(), pipe)) > 0) output.append(chunk.data(), n);
  pclose(pipe);
  return output;
}

void LinkSystemTools(const std::filesystem::path& folder, std::initializer_list<const char*> tools) {
  std::filesystem::create_directories(folder);
  for (const char* tool : tools) {
    for (const char* dir : {"/usr/bin/", "/bin/", "/usr/sbin/", "/sbin/"}) {
      std::filesystem::path source = std::string(dir) + tool;
      if (std::filesystem::exists(source)) {
        std::filesystem::create_symlink(source, folder / tool);
        break;
      }
    }
  }
}

}  // namespace testsupport
