#pragma once

#include "Result.h"

#include <filesystem>
#include <string>

/// @brief The library folder and where each kind of file lives inside it.
///
/// flights/<id>/   committed flights, each one whole or absent
/// staging/<id>/   files uploaded for a flight not yet committed
/// parked/<id>/    sample flights that were removed and can be restored
/// tmp/            uploads in progress and files being built; emptied at start
/// outbox/         sign-in mails, one file each
/// music/          music beds
/// renders/        story videos and their posters, <render id>.mp4 and .jpg
class Library
{
public:
    /// Creates the folder and its parts when missing and proves it can be written.
    [[nodiscard]] static Result<Library> open(const std::filesystem::path &root);

    /// Clears what a stopped server left half done: files in tmp/, and staged uploads nobody
    /// came back for in a day. Only for the one server that owns the library.
    void tidy() const;

    [[nodiscard]] const std::filesystem::path &root() const { return m_root; }
    [[nodiscard]] std::filesystem::path database() const { return m_root / "library.db"; }
    [[nodiscard]] std::filesystem::path flights() const { return m_root / "flights"; }
    [[nodiscard]] std::filesystem::path flight(const std::string &id) const { return flights() / id; }
    [[nodiscard]] std::filesystem::path staging(const std::string &id) const { return m_root / "staging" / id; }
    [[nodiscard]] std::filesystem::path parked(const std::string &id) const { return m_root / "parked" / id; }
    [[nodiscard]] std::filesystem::path tmp() const { return m_root / "tmp"; }
    [[nodiscard]] std::filesystem::path outbox() const { return m_root / "outbox"; }
    [[nodiscard]] std::filesystem::path music() const { return m_root / "music"; }
    [[nodiscard]] std::filesystem::path renders() const { return m_root / "renders"; }

    /// A fresh, unused name under tmp/ (same file system as the rest, so renames are atomic).
    [[nodiscard]] std::filesystem::path tmpName(const std::string &suffix) const;
    /// Moves a folder out of sight (into tmp/) and then deletes it, so it vanishes at once.
    void removeFolder(const std::filesystem::path &folder) const;
    /// Bytes of all regular files below a folder; 0 when it is missing.
    [[nodiscard]] static std::int64_t folderBytes(const std::filesystem::path &folder);

private:
    explicit Library(std::filesystem::path root) : m_root(std::move(root)) {}
    std::filesystem::path m_root;
};
