// The rules of the command table, over all rows of the chain.

#include "../support/session.hpp"
#include "fem/elemutil.hpp"
#include "kernel/alias.hpp"
#include "kernel/command.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace quelor {

namespace {

/// Words that each dispatcher must know, in the order of the chain; the elements are added below.
const std::pair<const char*, const char*> chain_words[] = {
    {"quelorzt_cmd",
     "hyd_parameters hyd_coordaxs hyd_coord_trans hyd_body_check hyd_wave hyd_nodes hyd_node_gen "
     "phyd_nodes hyd_node_tolerance hyd_surf_nodes hyd_surf_node_gen phyd_surf_nodes "
     "hyd_surf_node_tolerance hyd_surf_elevation hyd_analysis hyd_analysis_response "
     "hyd_postresponse hyd_analysis_response_drag hyd_analysis_response_P hyd_postresponse_P "
     "hyd_close_files hyd_rigid_modes hyd_rmass hyd_flex_modes hyd_genmodes "
     "hyd_mooring_stiffness phyd_mooring_stiffness hyd_assign_mooring hyd_tf hyd_wave_spectra "
     "phyd_wave_spectra hyd_irregular hyd_wet hyd_energy hyd_panel_rmap hyd_modal_pressure "
     "hyd_export_graphics hyd_export_graphics_th hyd_convert_fea_mesh hyd_wave_dispersion "
     "hyd_velocity_nodes hyd_velocity_node_gen phyd_velocity_nodes hyd_velocity_node_tolerance "
     "hyd_velocity phyd_velocity"},
    {"util_cmd",
     "new_project newproj newprob filein return login logfile h help date time index palias quit q "
     "sq savequit name? read write rename_file rm_file flush if else endif tivla_version "
     "system_command term comm"},
    {"db_cmd", "ls dir ll memory rm del rm* del* mv rename readdb save clear"},
    {"mat_cmd",
     "print p printf pf printi xprint xp inputi input inputc inputch input3di input3d input3dc "
     "to_int to_real to_real16 to_complex to_complex2 to_vector get_dim dim_reduce series series2d "
     "seti setr setch cp copy array3d_slice array3d_unslice extract sort trans cpdg split unsplit "
     "wrap unwrap put putdg zero zeroc zeroi ident identc identi add sub subcol sumcol norm max min "
     "mult tmult col_mult mult_col mult_elem diag_mult joinh joinv scale invert gauss ptoful ftopro "
     "pmult psolve psolve16 ptosparse sparse_matrix_clean sparse_mult jacobi eigval arpack fft "
     "fft_helper interpolate"},
    {"func_cmd",
     "abs conjugate exp log log10 pi power sqrt sin cos tan asin acos atan sinh cosh tanh bessel_j "
     "bessel_y erf erfc erfc_scaled epsilon gamma"},
    {"fem_cmd",
     "nodes node_gen pnodes bcid pbcid merge_nodes elem_grp node_order num_eqs peqs peqns form_k "
     "formk form_m formm form_c formc form_lagrangeG form_G nodal_constraint mass_summary "
     "load_summary check_diag state pstate response presponse presp node_str fem_error nodef pnodef "
     "nodal_pressure conc_deck_loads distr_deck_loads pdeck_loads current_velocity pcurrentvelocity "
     "cp_tables mass pmass dampers pdampers imposed_displ pimposed_displ initial_conditions "
     "body_frc2d pbody_frc2d lsolve nsolve consolidation disp_cntl pdisp nodal_disp pndisp pndisp_th "
     "el_iso_matl export_graphics rigid_modes eq_direction modal_th direct_th water_waves"},
    {"fe_elm_cmd", "elem_alias"},
    {"misc_cmd", "userf gauss_int gauss_pts tri_intpts poly fortran_kind incoming_wave"},
    {"loop_cmd", "while end_while do end_do break_loop"},
};

using Words = std::vector<std::string>;

std::map<std::string, Words> expected_words() {
    std::map<std::string, Words> tables;
    for (const auto& [name, list] : chain_words) {
        std::istringstream words(list);
        for (std::string word; words >> word;)
            tables[name].push_back(word);
    }
    for (int slot = 1; slot <= element_slots; ++slot) {
        const std::string number = std::to_string(100 + slot).substr(1);
        tables["fe_elm_cmd"].push_back("elem" + number);
        tables["fe_elm_cmd"].push_back("pelem" + number);
    }
    return tables;
}

std::vector<const Command*> rows_of(const CommandTable& table) {
    std::vector<const Command*> rows;
    for (const Family family : table.families) {
        for (const Command& command : family())
            rows.push_back(&command);
    }
    return rows;
}

std::vector<const Command*> all_rows() {
    std::vector<const Command*> rows;
    for (const CommandTable* table : command_chain()) {
        for (const Command* command : rows_of(*table))
            rows.push_back(command);
    }
    return rows;
}

Words words_of(const CommandTable& table) {
    Words words(table.planned.begin(), table.planned.end());
    for (const Command* command : rows_of(table)) {
        for (const auto word : command->words) {
            if (!word.empty()) words.emplace_back(word);
        }
    }
    return words;
}

} // namespace

TEST(CommandTable, EveryDispatcherKnowsTheWordsThatItMust) {
    auto expected = expected_words();
    ASSERT_EQ(command_chain().size(), std::size(chain_words));
    for (std::size_t i = 0; i < command_chain().size(); ++i) {
        const CommandTable& table = *command_chain()[i];
        EXPECT_EQ(table.name, chain_words[i].first);
        Words& wanted = expected[std::string(table.name)];
        Words found = words_of(table);
        std::ranges::sort(wanted);
        std::ranges::sort(found);
        Words missing;
        std::ranges::set_difference(wanted, found, std::back_inserter(missing));
        EXPECT_EQ(missing, Words{}) << table.name;
    }
}

TEST(CommandTable, NoWordStandsTwiceOrIsLongerThanACommandWord) {
    std::set<std::string> seen;
    for (const CommandTable* table : command_chain()) {
        for (const std::string& word : words_of(*table)) {
            EXPECT_TRUE(seen.insert(word).second) << word;
            EXPECT_LE(word.size(), 32u) << word;
            EXPECT_EQ(find_command(command_chain(), word) == nullptr,
                      is_planned(command_chain(), word))
                << word;
        }
    }
    EXPECT_FALSE(find_command(command_chain(), "Print") || is_planned(command_chain(), "Print"));
    EXPECT_FALSE(find_command(command_chain(), "") || is_planned(command_chain(), ""));
}

TEST(CommandTable, EveryRowHasASummaryAndAHelpTextThatShowsItsWord) {
    for (const Command* command : all_rows()) {
        const auto word = command->words[0];
        EXPECT_TRUE(command->run) << word;
        if (command->help == "Unused element.\\n") continue; // all that an empty slot has to say
        EXPECT_FALSE(command->summary.empty()) << word;
        EXPECT_LE(command->summary.size(), 47u) << word << ": its line in index passes column 80";
        EXPECT_TRUE(command->help.starts_with("Command Syntax\n\t")) << word;
        EXPECT_NE(command->help.find(alias_to_user(word)), std::string_view::npos) << word;
        EXPECT_TRUE(command->help.ends_with('\n')) << word;
    }
}

TEST(CommandTable, EveryHelpTextHasAnExampleAndRefersToWordsOfTheChain) {
    for (const Command* command : all_rows()) {
        const auto word = command->words[0], help = command->help;
        if (help == "Unused element.\\n") continue;
        const auto example = help.find("\nExample"), last = help.find("\nSee Also\n\t");
        EXPECT_NE(example, std::string_view::npos) << word;
        ASSERT_NE(last, std::string_view::npos) << word;
        std::string list(help.substr(last + 11));
        std::ranges::replace_if(
            list, [](char c) { return c == ',' || c == '\n' || c == '\t'; }, ' ');
        std::istringstream words(list);
        for (std::string other; words >> other;) {
            const auto internal = alias_to_internal(other);
            EXPECT_TRUE(find_command(command_chain(), internal) ||
                        is_planned(command_chain(), internal))
                << word << " refers to " << other;
            EXPECT_NE(internal, word) << "refers to itself";
        }
    }
}

TEST_F(Session, TheIndexListsEveryWordThatWorks) {
    set_record("index");
    const Command* const command_index = find_command(command_chain(), "index");
    const std::string index = screen([&] { command_index->run("index"); });
    for (const Command* command : all_rows()) {
        if (command->summary.empty()) continue; // an unused element
        std::string line = "\n  ";
        for (const auto word : command->words)
            if (!word.empty()) line.append(line.size() > 3 ? ", " : "").append(alias_to_user(word));
        EXPECT_NE(index.find(line + "  "), std::string::npos) << line;
    }
}

TEST(CommandTable, ATableLeftOutOfTheChainClaimsNothing) {
    const CommandTable* const chain[] = {&util_cmd(), &loop_cmd()};
    EXPECT_TRUE(find_command(chain, "do"));
    EXPECT_FALSE(find_command(chain, "nodes") || is_planned(chain, "nodes"));
}

TEST(Alias, UsersNamesOfTheElementsAreTranslatedBothWays) {
    EXPECT_EQ(alias_to_internal("ntruss"), "elem01");
    EXPECT_EQ(alias_to_internal("pntruss"), "pelem01");
    EXPECT_EQ(alias_to_internal("pbridge"), "elem19");
    EXPECT_EQ(alias_to_internal("ppbridge"), "pelem19");
    EXPECT_EQ(alias_to_internal("phyd_surf_panel"), "pelem38");
    EXPECT_EQ(alias_to_internal("elem01"), "elem01");
    EXPECT_EQ(alias_to_internal("Ntruss"), "Ntruss");
    EXPECT_EQ(alias_to_internal(""), "");
    EXPECT_EQ(alias_to_user("pelem36"), "phyd_panel");
    EXPECT_EQ(alias_to_user("elem40"), "elem40");
}

} // namespace quelor
