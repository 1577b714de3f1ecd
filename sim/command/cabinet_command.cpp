#include "sim/command/cabinet_command.h"

#include "sim/cabinet/template.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

namespace sim
{

CabinetCommand::CabinetCommand(CLI::App &command)
{
    command.require_subcommand(1);
    CLI::App *check = command.add_subcommand("check", "check FILE: tells every mistake of a cabinet file");
    check->add_option("FILE", file_)->required();
    check_ = check;
    CLI::App *create = command.add_subcommand("new", "new MODEL: writes a cabinet file to begin with");
    TextWords models;
    for (const Model model : everyModel)
        models.emplace_back(nameOf(model));
    create->add_option("MODEL", model_)->required()->check(CLI::IsMember(models));
}

int CabinetCommand::carryOut() const
{
    return check_->parsed() ? check() : printTemplate();
}

int CabinetCommand::check() const
{
    try {
        const cabinet::Cabinet cabinet = cabinet::Cabinet::read(file_);
        std::size_t parts = 0;
        for (const cabinet::Board &board : cabinet.boards())
            parts += board.parts.size();
        std::printf("%s: no mistakes; boards: %zu, parts: %zu\n", file_.c_str(), cabinet.boards().size(), parts);
        return 0;
    } catch (const cabinet::Error &mistakes) {
        std::fprintf(stderr, "%s\n", mistakes.what());
        return 1;
    }
}

int CabinetCommand::printTemplate() const
{
    for (const Model model : everyModel) {
        if (model_ == nameOf(model))
            std::fputs(cabinet::templateFor(model).c_str(), stdout);
    }
    return 0;
}

cabinet::Cabinet cabinetFrom(const std::string &file)
{
    try {
        return cabinet::Cabinet::read(file);
    } catch (const cabinet::Error &mistakes) {
        throw UsageError(std::string("--cabinet: ") + mistakes.what());
    }
}

}  // namespace sim
