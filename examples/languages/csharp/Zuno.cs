// The navigation runtime for C#, by P/Invoke over the C library: see zuno.h for what each call does
// and costs. Failures are thrown as ZunoException; what is not there is null. Objects free what they
// hold when they are disposed of, or finalized.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Zuno {

[StructLayout(LayoutKind.Sequential)]
public struct Point {
    public float X, Y, Z;
    public Point(float x, float y, float z) { X = x; Y = y; Z = z; }
}
[StructLayout(LayoutKind.Sequential)]
public struct Point2 { public float X, Y; }
[StructLayout(LayoutKind.Sequential)]
public struct Place { public uint Node; public Point Position; }
[StructLayout(LayoutKind.Sequential)]
public struct Memory {
    internal uint Size;
    public int IsRecording;
    public ulong Allocations, Frees, Blocks, Bytes, PeakBytes;
}
[StructLayout(LayoutKind.Sequential)]
public struct Answer {
    internal uint Size;
    public PathState Result;
    public Point Start, Goal;
    public float Cost;
    public uint FramesWaited;
    public ulong Expansions;
    public int IsLate;
    public uint WaypointCount;
}
[StructLayout(LayoutKind.Sequential)]
public struct CorridorState {
    internal uint Size;
    public Place Position, Goal;
    public int HasPath, NeedsSearch;
}
public enum PathState { Found, Running, NoPath, OffMesh }
public enum Priority { Urgent, Normal, Background }
public enum PathForm { Plain, Improved }

public class ZunoException : Exception {
    public readonly int Status;
    public readonly string Type; // the exception's class in the library, or ""
    internal ZunoException(string text, int status, string type) : base(text) {
        Status = status;
        Type = type;
    }
}

static class Native {
    const string Library = "zunoc";
    [StructLayout(LayoutKind.Sequential)]
    internal struct Error { public uint Size; public int Status; public IntPtr Text, Type, Parameters; public uint Count; }
    [StructLayout(LayoutKind.Sequential)]
    internal struct Settings { public uint Size; public IntPtr BaseFolder, Recording, Memory, Files; }
    [StructLayout(LayoutKind.Sequential)]
    internal struct Request { public uint Size; public Priority Priority; public Point Start, Goal; public uint Deadline; }

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_check_version(uint header, IntPtr library);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_last_error(ref Error error);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_start(ref Settings settings, byte[] mesh, out IntPtr session);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_close(IntPtr session, ref Memory left);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_memory_figures(IntPtr session, ref Memory figures);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_destroy(IntPtr handle);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_bounds(IntPtr session, out Point2 low, out Point2 high);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_is_blocked(IntPtr session, float x, float y, out int blocked);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_ground_height(IntPtr session, float x, float y, out float height);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_trace_ray(IntPtr session, float fromX, float fromY, float toX, float toY, out float distance);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_search_open(IntPtr session, ref Point start, ref Point goal, out IntPtr search);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_search_run(IntPtr search, uint budget, out PathState state);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_search_waypoints(IntPtr search, [Out] Point[] points, ref uint count);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_search_cost(IntPtr search, out float cost);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_scheduler_create(IntPtr session, IntPtr settings, out IntPtr scheduler);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_scheduler_add(IntPtr scheduler, ref Request request, out ulong id);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_scheduler_cancel(IntPtr scheduler, ulong id);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_scheduler_advance(IntPtr scheduler, ulong expansions, ulong nanoseconds);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_scheduler_take(IntPtr scheduler, ulong id, ref Answer answer, [Out] Point[] waypoints, ref uint count);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_load(IntPtr session, byte[] name, out IntPtr mesh);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_outline(IntPtr mesh, uint node, [Out] Point[] points, ref uint count);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_ground(IntPtr mesh, ref Point at, float height, out Place place);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_nearest(IntPtr mesh, ref Point at, float radius, float height, out Place place, IntPtr distance);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_random(IntPtr mesh, ulong seed, out Place place);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_move(IntPtr mesh, ref Place from, ref Point target, out Place end);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_mesh_explain(IntPtr mesh, ref Point start, ref Point goal, out int answer, byte[] text, ref uint size);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_path_create(IntPtr mesh, out IntPtr path);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_path_straighten(IntPtr path, ref Point start, ref Point goal, Point[] waypoints, uint count, PathForm form);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_path_corners(IntPtr path, [Out] Point[] corners, ref uint count, out double length);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_corridor_create(IntPtr mesh, ref Place at, out IntPtr corridor);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_corridor_follow(IntPtr corridor, IntPtr path);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_corridor_next(IntPtr corridor, float reached, out Point corner);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_corridor_move(IntPtr corridor, ref Point target);
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)] internal static extern int zuno_corridor_look(IntPtr corridor, ref CorridorState state);

    static Native() { Check(zuno_check_version(10000, IntPtr.Zero)); }

    internal static uint SizeOf<T>() { return (uint)Marshal.SizeOf(typeof(T)); }
    internal static byte[] Utf8(string text) { return Encoding.UTF8.GetBytes(text + "\0"); }

    // Whether what was asked for is there.
    internal static bool Check(int status) {
        if (status >= 0)
            return status == 0;
        var error = new Error { Size = SizeOf<Error>() };
        zuno_last_error(ref error);
        throw new ZunoException(Text(error.Text), error.Status, Text(error.Type));
    }
    static string Text(IntPtr text) {
        int length = 0;
        while (Marshal.ReadByte(text, length) != 0)
            ++length;
        var bytes = new byte[length];
        Marshal.Copy(text, bytes, 0, length);
        return Encoding.UTF8.GetString(bytes);
    }
}

// Holds a handle.
public abstract class Handle : IDisposable {
    internal IntPtr Value;
    internal Handle(IntPtr value) { Value = value; }
    ~Handle() { Free(); }
    public void Dispose() {
        Free();
        GC.SuppressFinalize(this);
    }
    void Free() {
        if (Value != IntPtr.Zero)
            Close();
        Value = IntPtr.Zero;
    }
    internal virtual void Close() { Native.zuno_destroy(Value); }
}

// A running world.
public class Session : Handle {
    public Session(string mesh, string baseFolder = null, string recording = null)
        : base(Start(mesh, baseFolder, recording)) {}
    static IntPtr Start(string mesh, string baseFolder, string recording) {
        var texts = new[] { Pin(baseFolder), Pin(recording) };
        var settings = new Native.Settings { Size = Native.SizeOf<Native.Settings>(), BaseFolder = texts[0], Recording = texts[1] };
        try {
            IntPtr session;
            Native.Check(Native.zuno_start(ref settings, Native.Utf8(mesh), out session));
            return session;
        } finally {
            foreach (var text in texts)
                Marshal.FreeHGlobal(text);
        }
    }
    static IntPtr Pin(string text) {
        if (text == null)
            return IntPtr.Zero;
        var bytes = Native.Utf8(text);
        var place = Marshal.AllocHGlobal(bytes.Length);
        Marshal.Copy(bytes, 0, place, bytes.Length);
        return place;
    }
    internal override void Close() {
        var left = new Memory { Size = Native.SizeOf<Memory>() };
        Native.zuno_close(Value, ref left);
    }
    public Memory MemoryFigures() {
        var figures = new Memory { Size = Native.SizeOf<Memory>() };
        Native.Check(Native.zuno_memory_figures(Value, ref figures));
        return figures;
    }
    public void Bounds(out Point2 low, out Point2 high) { Native.Check(Native.zuno_bounds(Value, out low, out high)); }
    public bool IsBlocked(float x, float y) {
        int blocked;
        Native.Check(Native.zuno_is_blocked(Value, x, y, out blocked));
        return blocked != 0;
    }
    public float? GroundHeight(float x, float y) {
        float height;
        return Native.Check(Native.zuno_ground_height(Value, x, y, out height)) ? height : (float?)null;
    }
    public float? TraceRay(float fromX, float fromY, float toX, float toY) {
        float distance;
        return Native.Check(Native.zuno_trace_ray(Value, fromX, fromY, toX, toY, out distance)) ? distance : (float?)null;
    }
    // Null when a point stands on no node.
    public Search Search(Point start, Point goal) {
        IntPtr search;
        return Native.Check(Native.zuno_search_open(Value, ref start, ref goal, out search)) ? new Search(search) : null;
    }
    public Scheduler Scheduler() {
        IntPtr scheduler;
        Native.Check(Native.zuno_scheduler_create(Value, IntPtr.Zero, out scheduler));
        return new Scheduler(scheduler);
    }
}

public class Search : Handle {
    internal Search(IntPtr value) : base(value) {}
    public PathState Run(uint budget) {
        PathState state;
        Native.Check(Native.zuno_search_run(Value, budget, out state));
        return state;
    }
    // The next waypoints, at most so many.
    public Point[] Waypoints(uint most = 4096) {
        var points = new Point[most];
        Native.Check(Native.zuno_search_waypoints(Value, points, ref most));
        Array.Resize(ref points, (int)most);
        return points;
    }
    public float Cost() {
        float cost;
        Native.Check(Native.zuno_search_cost(Value, out cost));
        return cost;
    }
}

public class Scheduler : Handle {
    internal Scheduler(IntPtr value) : base(value) {}
    public ulong Add(Point start, Point goal, Priority priority = Priority.Normal, uint deadline = 0) {
        var request = new Native.Request { Size = Native.SizeOf<Native.Request>(), Priority = priority, Start = start, Goal = goal, Deadline = deadline };
        ulong id;
        Native.Check(Native.zuno_scheduler_add(Value, ref request, out id));
        return id;
    }
    public void Cancel(ulong id) { Native.Check(Native.zuno_scheduler_cancel(Value, id)); }
    public void Advance(ulong expansions = ulong.MaxValue, ulong nanoseconds = ulong.MaxValue) {
        Native.Check(Native.zuno_scheduler_advance(Value, expansions, nanoseconds));
    }
    // Whether there is an answer: then it is taken.
    public bool Take(ulong id, out Answer answer, out Point[] waypoints) {
        answer = new Answer { Size = Native.SizeOf<Answer>() };
        waypoints = null;
        uint count = 0;
        if (!Native.Check(Native.zuno_scheduler_take(Value, id, ref answer, null, ref count)))
            return false;
        waypoints = new Point[count];
        return Native.Check(Native.zuno_scheduler_take(Value, id, ref answer, waypoints, ref count));
    }
}

// The ground, without a world; read through a session's files, or, without one, the C library's.
public class Mesh : Handle {
    public Mesh(string name, Session session = null) : base(Load(name, session)) {}
    static IntPtr Load(string name, Session session) {
        IntPtr mesh;
        Native.Check(Native.zuno_mesh_load(session == null ? IntPtr.Zero : session.Value, Native.Utf8(name), out mesh));
        return mesh;
    }
    public Point[] Outline(uint node) {
        uint count = 0;
        Native.Check(Native.zuno_mesh_outline(Value, node, null, ref count));
        var points = new Point[count];
        Native.Check(Native.zuno_mesh_outline(Value, node, points, ref count));
        return points;
    }
    public Place? Ground(Point at, float height = float.PositiveInfinity) {
        Place place;
        return Native.Check(Native.zuno_mesh_ground(Value, ref at, height, out place)) ? place : (Place?)null;
    }
    public Place? Nearest(Point at, float radius, float height) {
        Place place;
        return Native.Check(Native.zuno_mesh_nearest(Value, ref at, radius, height, out place, IntPtr.Zero)) ? place : (Place?)null;
    }
    public Place? Random(ulong seed) {
        Place place;
        return Native.Check(Native.zuno_mesh_random(Value, seed, out place)) ? place : (Place?)null;
    }
    public Place Move(Place from, Point target) {
        Place end;
        Native.Check(Native.zuno_mesh_move(Value, ref from, ref target, out end));
        return end;
    }
    // Whole sentences on why there is, or isn't, a path.
    public string Explain(Point start, Point goal) {
        int answer;
        uint size = 0;
        Native.Check(Native.zuno_mesh_explain(Value, ref start, ref goal, out answer, null, ref size));
        var text = new byte[size];
        Native.Check(Native.zuno_mesh_explain(Value, ref start, ref goal, out answer, text, ref size));
        return Encoding.UTF8.GetString(text, 0, (int)size - 1);
    }
}

// A path from corner to corner.
public class Path : Handle {
    public Path(Mesh mesh) : base(Create(mesh)) {}
    static IntPtr Create(Mesh mesh) {
        IntPtr path;
        Native.Check(Native.zuno_path_create(mesh.Value, out path));
        return path;
    }
    public bool Straighten(Point start, Point goal, Point[] waypoints, PathForm form = PathForm.Improved) {
        return Native.Check(Native.zuno_path_straighten(Value, ref start, ref goal, waypoints, (uint)waypoints.Length, form));
    }
    public Point[] Corners(out double length) {
        uint count = 0;
        Native.Check(Native.zuno_path_corners(Value, null, ref count, out length));
        var corners = new Point[count];
        Native.Check(Native.zuno_path_corners(Value, corners, ref count, out length));
        return corners;
    }
}

// A character that walks.
public class Corridor : Handle {
    public Corridor(Mesh mesh, Place at) : base(Create(mesh, at)) {}
    static IntPtr Create(Mesh mesh, Place at) {
        IntPtr corridor;
        Native.Check(Native.zuno_corridor_create(mesh.Value, ref at, out corridor));
        return corridor;
    }
    public bool Follow(Path path) { return Native.Check(Native.zuno_corridor_follow(Value, path.Value)); }
    public Point Next(float reached) {
        Point corner;
        Native.Check(Native.zuno_corridor_next(Value, reached, out corner));
        return corner;
    }
    public void Move(Point target) { Native.Check(Native.zuno_corridor_move(Value, ref target)); }
    public CorridorState State() {
        var state = new CorridorState { Size = Native.SizeOf<CorridorState>() };
        Native.Check(Native.zuno_corridor_look(Value, ref state));
        return state;
    }
}

}
