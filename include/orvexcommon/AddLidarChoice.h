#pragma once

/// How LiDAR data is to be added to the project.
enum AddLidarChoice {
    ADD_LIDAR_READ_ONLY = 0,
    ADD_LIDAR_READ_WRITE = 1,
    ADD_LIDAR_NOT_AT_ALL = 2,
};
