/** What `zuno.h` numbers, by its names. */

export const Status = {
    OK: 0, NONE: 1, BAD_ARGUMENT: -1, BAD_HANDLE: -2, BAD_SIZE: -3, TOO_SMALL: -4, BUSY: -5, NO_MEMORY: -6,
    BAD_FILE: -7, BAD_MESH: -8, BAD_RECORDING: -9, BAD_VERSION: -10, FAILED: -11,
} as const;
export type Status = (typeof Status)[keyof typeof Status];

/** How a search stands, and how a request was answered. */
export const Result = { FOUND: 0, RUNNING: 1, NO_PATH: 2, OFF_MESH: 3 } as const;
export type Result = (typeof Result)[keyof typeof Result];

export const Priority = { URGENT: 0, NORMAL: 1, BACKGROUND: 2 } as const;
export type Priority = (typeof Priority)[keyof typeof Priority];

/** PLAIN keeps to the nodes that were found, IMPROVED passes obstacles on their shorter side. */
export const Form = { PLAIN: 0, IMPROVED: 1 } as const;
export type Form = (typeof Form)[keyof typeof Form];

/** Why there is, or isn't, a path. */
export const Reason = { POSSIBLE: 0, POINT_OFF_MESH: 1, OTHER_ISLAND: 2, ONLY_ONE_WAY: 3 } as const;
export type Reason = (typeof Reason)[keyof typeof Reason];

export const LogLevel = { DEBUG: 0, MESSAGE: 1, WARNING: 2, ERROR: 3, REPORT: 4 } as const;
export type LogLevel = (typeof LogLevel)[keyof typeof LogLevel];

/** A call that failed. What it was asked to do was not done, and may be asked for again. */
export class ZunoError extends Error {
    override readonly name = "ZunoError";

    constructor(
        message: string,
        readonly status: Status,
        /** The exception's class in the runtime, "FileNotFoundException"; or empty. */
        readonly type = "",
        /** What the exception names, such as a file. */
        readonly parameters: Readonly<Record<string, string>> = {},
    ) {
        super(message);
    }
}
