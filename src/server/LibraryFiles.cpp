#include "LibraryFiles.h"

#include <fstream>

namespace fs = std::filesystem;

namespace LibraryFiles {

bool replace(const Library &library, const fs::path &target, const std::string &text)
{
    const fs::path part = library.tmpName(".part");
    {
        std::ofstream out(part, std::ios::binary);
        out << text;
        if (!out.flush()) {
            out.close();
            std::error_code ec;
            fs::remove(part, ec);
            return false;
        }
    }
    std::error_code ec;
    fs::rename(part, target, ec);
    if (!ec)
        return true;
    fs::remove(part, ec);
    return false;
}

nlohmann::ordered_json readJson(const fs::path &file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return nullptr;
    auto doc = nlohmann::ordered_json::parse(in, nullptr, false);
    return doc.is_discarded() ? nlohmann::ordered_json() : doc;
}

} // namespace LibraryFiles
