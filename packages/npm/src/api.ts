/** What both entries offer beside their `load`. */
export type { Corridor, CorridorState } from "./corridor.js";
export type { Mesh, NearestPlace } from "./mesh.js";
export type { Address, Log, Module } from "./module.js";
export type { Path } from "./path.js";
export type { Answer, Request, Scheduler, SchedulerFigures, SchedulerSettings } from "./scheduler.js";
export type { Search } from "./search.js";
export type { MemoryFigures, Session, SessionSettings } from "./session.js";
export * from "./statuses.js";
export type { Content, Place, Point, Point2, PointLike } from "./values.js";
export type { LoadSettings, Replay, Zuno } from "./zuno.js";
