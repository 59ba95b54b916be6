#ifndef BSP_SHARED_INFLATEDIMAGE_H
#define BSP_SHARED_INFLATEDIMAGE_H

namespace os::bsp
{

/** The kernel that is being inflated, for one program at a time. */
constexpr const char* InflatedImage = "/dev/shm/zImage_tmp";

} // namespace os::bsp

#endif
