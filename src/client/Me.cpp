#include "Me.h"

#include "APIError.h"

#include <nlohmann/json.hpp>

Result<Me> Me::fromJson(const QByteArray &body)
{
    const auto j = nlohmann::json::parse(body.begin(), body.end(), nullptr, false);
    if (!j.is_object())
        return APIError::decoding();
    const auto id = j.find("id");
    const auto email = j.find("email");
    const auto admin = j.find("admin");
    if (id == j.end() || !id->is_number_integer() || email == j.end() || !email->is_string()
        || admin == j.end() || !admin->is_boolean())
        return APIError::decoding();
    Me me;
    me.id = id->get<int>();
    me.email = QString::fromStdString(email->get<std::string>());
    me.admin = admin->get<bool>();
    if (const auto plan = j.find("plan"); plan != j.end() && !plan->is_null()) {
        if (!plan->is_string())
            return APIError::decoding();
        me.plan = QString::fromStdString(plan->get<std::string>());
    }
    if (const auto ai = j.find("ai"); ai != j.end() && !ai->is_null()) {
        if (!ai->is_boolean())
            return APIError::decoding();
        me.ai = ai->get<bool>();
    }
    return me;
}
