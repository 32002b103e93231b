// Names what the page brings along, so that the linker looks for nothing else.
mergeInto(LibraryManager.library, Object.fromEntries([
    "zuno_bake_progress", "zuno_bake_give", "recast_make", "recast_release", "recast_read", "recast_write",
    "recast_fault", "recast_create", "recast_mark", "recast_rasterise", "recast_filter_obstacles",
    "recast_filter_ledges", "recast_compact", "recast_erode", "recast_measure", "recast_divide",
    "recast_contour", "recast_polygons",
].map((name) => [name, () => {}])));
