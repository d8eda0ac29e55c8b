#include "orvanta/platform/GphotoCamera.h"

#include "orvanta/platform/CameraDriverCache.h"
#include "orvanta/platform/Gphoto2Library.h"

namespace Orvanta::Platform {

namespace {

// The drivers libgphoto2 knows, loaded once for the process (loading them opens every camera driver,
// which costs more than opening a camera); after the load it is only read. The port list is read per
// open: a lookup may add to it.
CameraAbilitiesList* knownCameras(GPContext* context) {
    static CameraAbilitiesList* const loaded = [context] {
        const Gphoto2Api& gp = gphoto2();
        CameraAbilitiesList* list = nullptr;
        if (gp.gp_abilities_list_new(&list) < GP_OK) return static_cast<CameraAbilitiesList*>(nullptr);
        if (gp.gp_abilities_list_load(list, context) < GP_OK) {
            gp.gp_abilities_list_free(list);
            return static_cast<CameraAbilitiesList*>(nullptr);
        }
        return list;
    }();
    return loaded;
}

class PortList {
public:
    PortList() {
        const Gphoto2Api& gp = gphoto2();
        if (gp.gp_port_info_list_new(&ports) < GP_OK) return;
        if (gp.gp_port_info_list_load(ports) < GP_OK) {
            gp.gp_port_info_list_free(ports);
            ports = nullptr;
        }
    }
    ~PortList() {
        if (ports) gphoto2().gp_port_info_list_free(ports);
    }
    PortList(const PortList&) = delete;
    PortList& operator=(const PortList&) = delete;

    GPPortInfoList* ports = nullptr;
};

// A model's abilities: from its driver alone when the cache remembers which one it is, else from
// every driver (remembered then for the next time).
bool findAbilities(const std::string& model, CameraAbilities* abilities, GPContext* context) {
    const CameraDriverCache cache = CameraDriverCache::user();
    if (cache.find(model, abilities, context)) return true;
    const Gphoto2Api& gp = gphoto2();
    CameraAbilitiesList* cameras = knownCameras(context);
    const int index = cameras ? gp.gp_abilities_list_lookup_model(cameras, model.c_str()) : -1;
    if (index < 0 || gp.gp_abilities_list_get_abilities(cameras, index, abilities) < GP_OK) return false;
    cache.remember(model, *abilities);
    return true;
}

GPContextFeedback onCancel(GPContext*, void* data) {
    const auto* cancelled = static_cast<const std::function<bool()>*>(data);
    return *cancelled && (*cancelled)() ? GP_CONTEXT_FEEDBACK_CANCEL : GP_CONTEXT_FEEDBACK_OK;
}

}  // namespace

std::vector<std::string> GphotoCamera::autodetect() {
    std::vector<std::string> ids;
    if (!loadGphoto2()) return ids;
    const Gphoto2Api& gp = gphoto2();
    GPContext* context = gp.gp_context_new();
    CameraList* list = nullptr;
    if (gp.gp_list_new(&list) >= GP_OK && gp.gp_camera_autodetect(list, context) >= GP_OK) {
        const int count = gp.gp_list_count(list);
        for (int i = 0; i < count; ++i) {
            const char* model = nullptr;
            const char* port = nullptr;
            if (gp.gp_list_get_name(list, i, &model) >= GP_OK &&
                gp.gp_list_get_value(list, i, &port) >= GP_OK)
                ids.push_back(std::string(model) + "@" + port);
        }
    }
    if (list) gp.gp_list_free(list);
    gp.gp_context_unref(context);
    return ids;
}

std::unique_ptr<GphotoCamera> GphotoCamera::open(const std::string& id) {
    // Models have no '@'; ports may (a folder's path), so the first one divides.
    const std::size_t at = id.find('@');
    if (at == std::string::npos || !loadGphoto2()) return nullptr;
    const std::string model = id.substr(0, at);
    const std::string port = id.substr(at + 1);
    const Gphoto2Api& gp = gphoto2();
    GPContext* context = gp.gp_context_new();
    CameraAbilities abilities;
    if (!findAbilities(model, &abilities, context)) {
        gp.gp_context_unref(context);
        return nullptr;
    }
    const PortList known;
    Camera* camera = nullptr;
    GPPortInfo portInfo;
    const int portIndex = known.ports ? gp.gp_port_info_list_lookup_path(known.ports, port.c_str()) : -1;
    if (portIndex < 0 || gp.gp_port_info_list_get_info(known.ports, portIndex, &portInfo) < GP_OK ||
        gp.gp_camera_new(&camera) < GP_OK) {
        gp.gp_context_unref(context);
        return nullptr;
    }
    if (gp.gp_camera_set_abilities(camera, abilities) < GP_OK ||
        gp.gp_camera_set_port_info(camera, portInfo) < GP_OK || gp.gp_camera_init(camera, context) < GP_OK) {
        gp.gp_camera_unref(camera);
        gp.gp_context_unref(context);
        return nullptr;
    }
    return std::unique_ptr<GphotoCamera>(new GphotoCamera(camera, context));
}

GphotoCamera::GphotoCamera(Camera* camera, GPContext* context) : mCamera(camera), mContext(context) {
    const Gphoto2Api& gp = gphoto2();
    gp.gp_context_set_cancel_func(mContext, onCancel, &mCancelled);
    gp.gp_context_set_progress_funcs(
        mContext,
        [](GPContext*, float target, const char*, void* data) -> unsigned int {
            static_cast<GphotoCamera*>(data)->mTarget = target;
            return 0;
        },
        [](GPContext*, unsigned int, float current, void* data) {
            auto* self = static_cast<GphotoCamera*>(data);
            if (self->mProgress && self->mTarget > 0) self->mProgress(current / self->mTarget);
        },
        [](GPContext*, unsigned int, void*) {}, this);
}

GphotoCamera::~GphotoCamera() {
    const Gphoto2Api& gp = gphoto2();
    gp.gp_camera_exit(mCamera, mContext);
    gp.gp_camera_unref(mCamera);
    gp.gp_context_unref(mContext);
}

void GphotoCamera::setCancel(std::function<bool()> isCancelled) {
    mCancelled = std::move(isCancelled);
}

bool GphotoCamera::listFolders(const std::string& folder, std::vector<std::string>* names) {
    const Gphoto2Api& gp = gphoto2();
    CameraList* list = nullptr;
    if (gp.gp_list_new(&list) < GP_OK) return false;
    const bool ok = gp.gp_camera_folder_list_folders(mCamera, folder.c_str(), list, mContext) >= GP_OK;
    for (int i = 0, n = ok ? gp.gp_list_count(list) : 0; i < n; ++i) {
        const char* name = nullptr;
        if (gp.gp_list_get_name(list, i, &name) >= GP_OK) names->push_back(name);
    }
    gp.gp_list_free(list);
    return ok;
}

bool GphotoCamera::listFiles(const std::string& folder, std::vector<std::string>* names) {
    const Gphoto2Api& gp = gphoto2();
    CameraList* list = nullptr;
    if (gp.gp_list_new(&list) < GP_OK) return false;
    const bool ok = gp.gp_camera_folder_list_files(mCamera, folder.c_str(), list, mContext) >= GP_OK;
    for (int i = 0, n = ok ? gp.gp_list_count(list) : 0; i < n; ++i) {
        const char* name = nullptr;
        if (gp.gp_list_get_name(list, i, &name) >= GP_OK) names->push_back(name);
    }
    gp.gp_list_free(list);
    return ok;
}

bool GphotoCamera::getInfo(const std::string& folder, const std::string& name, FileInfo* info) {
    CameraFileInfo found;
    if (gphoto2().gp_camera_file_get_info(mCamera, folder.c_str(), name.c_str(), &found, mContext) < GP_OK)
        return false;
    info->name = name;
    if (found.file.fields & GP_FILE_INFO_SIZE) info->size = static_cast<std::size_t>(found.file.size);
    if (found.file.fields & GP_FILE_INFO_WIDTH) info->width = static_cast<int>(found.file.width);
    if (found.file.fields & GP_FILE_INFO_HEIGHT) info->height = static_cast<int>(found.file.height);
    if (found.file.fields & GP_FILE_INFO_MTIME) info->time = found.file.mtime;
    if (found.file.fields & GP_FILE_INFO_PERMISSIONS)
        info->deletable = (found.file.permissions & GP_FILE_PERM_DELETE) != 0;
    return true;
}

bool GphotoCamera::get(const std::string& folder, const std::string& name, int type, std::string* bytes) {
    const Gphoto2Api& gp = gphoto2();
    CameraFile* file = nullptr;
    if (gp.gp_file_new(&file) < GP_OK) return false;
    const char* data = nullptr;
    unsigned long size = 0;
    const bool ok = gp.gp_camera_file_get(mCamera, folder.c_str(), name.c_str(),
                                          static_cast<CameraFileType>(type), file, mContext) >= GP_OK &&
                    gp.gp_file_get_data_and_size(file, &data, &size) >= GP_OK && (data || size == 0);
    if (ok) bytes->assign(data ? data : "", size);
    gp.gp_file_unref(file);
    return ok && !(mCancelled && mCancelled()) && !bytes->empty();
}

bool GphotoCamera::download(const std::string& folder, const std::string& name, const Sink& take) {
    const Gphoto2Api& gp = gphoto2();
    // The driver appends each piece it reads to the file, which hands it straight to the sink.
    CameraFileHandler handler = {};
    handler.write = [](void* sink, unsigned char* data, uint64_t* size) {
        return (*static_cast<const Sink*>(sink))(reinterpret_cast<const char*>(data), *size)
                   ? GP_OK
                   : GP_ERROR_IO_WRITE;
    };
    CameraFile* file = nullptr;
    if (gp.gp_file_new_from_handler(&file, &handler, const_cast<Sink*>(&take)) < GP_OK) return false;
    const bool ok = gp.gp_camera_file_get(mCamera, folder.c_str(), name.c_str(), GP_FILE_TYPE_NORMAL, file,
                                          mContext) >= GP_OK;
    gp.gp_file_unref(file);
    return ok && !(mCancelled && mCancelled());
}

bool GphotoCamera::preview(const std::string& folder, const std::string& name, std::string* bytes) {
    return get(folder, name, GP_FILE_TYPE_PREVIEW, bytes);
}

bool GphotoCamera::exif(const std::string& folder, const std::string& name, std::string* bytes) {
    return get(folder, name, GP_FILE_TYPE_EXIF, bytes);
}

bool GphotoCamera::remove(const std::string& folder, const std::string& name) {
    return gphoto2().gp_camera_file_delete(mCamera, folder.c_str(), name.c_str(), mContext) >= GP_OK;
}

}  // namespace Orvanta::Platform
