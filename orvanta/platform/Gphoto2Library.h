#pragma once
// Gphoto2Library: libgphoto2, loaded the first time cameras are asked about rather than with the
// library, so that a host that never imports does not pay for it (nor for the camera drivers it
// loads) at start-up.
//
// Contract: loadGphoto2() loads libgphoto2 once per process and finds every function the camera
// code calls; false when it cannot (not installed), and then there are no cameras. After a true
// answer gphoto2() holds the functions, named as libgphoto2 names them.

#include <gphoto2/gphoto2.h>

namespace Orvanta::Platform {

#define ORVANTA_GPHOTO2_FUNCTIONS(F)                                                                      \
    F(gp_context_new)                                                                                     \
    F(gp_context_unref)                                                                                   \
    F(gp_context_set_cancel_func)                                                                         \
    F(gp_context_set_progress_funcs)                                                                      \
    F(gp_camera_autodetect)                                                                               \
    F(gp_list_new)                                                                                        \
    F(gp_list_free)                                                                                       \
    F(gp_list_count) F(gp_list_get_name) F(gp_list_get_value) F(gp_abilities_list_new)                    \
        F(gp_abilities_list_load) F(gp_abilities_list_load_dir) F(gp_abilities_list_free)                 \
            F(gp_abilities_list_lookup_model) F(gp_abilities_list_get_abilities) F(gp_port_info_list_new) \
                F(gp_port_info_list_load) F(gp_port_info_list_free) F(gp_port_info_list_lookup_path)      \
                    F(gp_port_info_list_get_info) F(gp_camera_new) F(gp_camera_set_abilities)             \
                        F(gp_camera_set_port_info) F(gp_camera_init) F(gp_camera_exit) F(gp_camera_unref) \
                            F(gp_camera_folder_list_files) F(gp_camera_folder_list_folders)               \
                                F(gp_camera_file_get_info) F(gp_camera_file_get) F(gp_camera_file_delete) \
                                    F(gp_file_new) F(gp_file_new_from_handler) F(gp_file_unref)           \
                                        F(gp_file_get_data_and_size)

struct Gphoto2Api {
#define ORVANTA_GPHOTO2_POINTER(name) decltype(&::name) name = nullptr;
    ORVANTA_GPHOTO2_FUNCTIONS(ORVANTA_GPHOTO2_POINTER)
#undef ORVANTA_GPHOTO2_POINTER
};

bool loadGphoto2();
const Gphoto2Api& gphoto2();

}  // namespace Orvanta::Platform
