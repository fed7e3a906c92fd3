// The arrays of the modes, as all mode commands make and find them.
#include "hydro_model/hyd_modes.hpp"

#include "kernel/require.hpp"

namespace quelor {

void hyd_create_modes(const ModeSizes& sizes) {
    for (const auto name : nodal_mode_arrays)
        create_matrix<double>(name, sizes.nnodes, sizes.nmode);
    create_matrix<double>(hyd_un, sizes.nmode, sizes.np);
    create_matrix<double>(hyd_uz, sizes.nmode, sizes.np);
    create_matrix<double>(hyd_kf, sizes.nmode, sizes.nmode);
    create_matrix<std::int32_t>(hyd_modesym, sizes.nmode, 0);
}

ModeArrays hyd_find_modes(const ModeSizes& sizes) {
    const auto find = [](std::string_view name, int rows, int cols) {
        return as_matrix<double>(require_array(name, type_real, {rows, cols}));
    };
    ModeArrays modes;
    for (std::size_t i = 0; i < modes.nodal.size(); ++i)
        modes.nodal[i] = find(nodal_mode_arrays[i], sizes.nnodes, sizes.nmode);
    modes.un = find(hyd_un, sizes.nmode, sizes.np);
    modes.uz = find(hyd_uz, sizes.nmode, sizes.np);
    modes.kf = find(hyd_kf, sizes.nmode, sizes.nmode);
    modes.modesym =
        as_span<std::int32_t>(require_array(hyd_modesym, type_integer, {sizes.nmode, 1}));
    return modes;
}

} // namespace quelor
