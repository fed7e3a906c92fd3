// The table of the database commands.
#include "kernel/database.hpp"

namespace quelor {

/// One line a family of rows.
static constexpr Family families[] = {database_rows};

const CommandTable& db_cmd() {
    static const CommandTable table{.name = "db_cmd",
                                    .topic = "database",
                                    .heading = "      DATABASE COMMANDS",
                                    .families = families,
                                    .planned = {}};
    return table;
}

} // namespace quelor
