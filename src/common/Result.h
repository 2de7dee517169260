#pragma once

#include "Failure.h"

#include <utility>
#include <variant>

/// @brief Either a value or the `Failure` that prevented it.
template <typename T>
class [[nodiscard]] Result
{
public:
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Result(Failure failure) : m_state(std::in_place_index<1>, std::move(failure)) {}

    [[nodiscard]] bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    [[nodiscard]] const T &value() const & { return std::get<0>(m_state); }
    [[nodiscard]] T &value() & { return std::get<0>(m_state); }
    [[nodiscard]] T &&value() && { return std::get<0>(std::move(m_state)); }
    [[nodiscard]] const T *operator->() const { return &std::get<0>(m_state); }
    [[nodiscard]] const T &operator*() const { return std::get<0>(m_state); }

    [[nodiscard]] const Failure &failure() const { return std::get<1>(m_state); }
    /// The failure's words, or an empty text on success.
    [[nodiscard]] QString errorText() const { return ok() ? QString() : failure().text; }

private:
    std::variant<T, Failure> m_state;
};

/// @brief Success without a value, or a `Failure`.
template <>
class [[nodiscard]] Result<void>
{
public:
    Result() = default;
    Result(Failure failure) : m_failure(std::move(failure)), m_failed(true) {}

    [[nodiscard]] bool ok() const { return !m_failed; }
    explicit operator bool() const { return ok(); }
    [[nodiscard]] const Failure &failure() const { return m_failure; }
    [[nodiscard]] QString errorText() const { return ok() ? QString() : m_failure.text; }

private:
    Failure m_failure;
    bool m_failed = false;
};
