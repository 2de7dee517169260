#pragma once

#include "Result.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// @brief Who is signed in: the reply of `api/me`.
struct Me {
    int id = 0;
    QString email;
    bool admin = false;
    std::optional<QString> plan;
    std::optional<bool> ai;

    [[nodiscard]] static Result<Me> fromJson(const QByteArray &body);
};
