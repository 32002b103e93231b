// Walks a path, asks 12,000 questions and prints the digest of the answers: Host.exe MESH
using System;
using Zuno;
static class Host {
    static ulong digest = 0xCBF29CE484222325;
    static uint seed = 11;
    static void Add(uint word) { digest = (digest ^ word) * 0x100000001B3; } // FNV-1a
    static void Add(float number) { Add(BitConverter.ToUInt32(BitConverter.GetBytes(number), 0)); }
    static float Between(float low, float high) {
        seed = seed * 1664525 + 1013904223;
        return low + (high - low) * ((seed >> 16) / 65536F);
    }
    static void Main(string[] arguments) {
        using (var session = new Session(arguments[0])) {
            session.Bounds(out Point2 low, out Point2 high);
            for (int i = 0, steps = 0; i < 3000; ++i) {
                var ends = new Point[2];
                for (int k = 0; k < 2; ++k) {
                    ends[k] = new Point(Between(low.X, high.X), 0, Between(low.Y, high.Y));
                    ends[k].Y = session.GroundHeight(ends[k].X, ends[k].Z) ?? 0;
                    foreach (var number in new[] { ends[k].X, ends[k].Y, ends[k].Z }) Add(number);
                }
                Add(session.IsBlocked(ends[1].X, ends[1].Z) ? 1U : 0U);
                Add(session.TraceRay(ends[0].X, ends[0].Z, ends[1].X, ends[1].Z) ?? -1F);
                var search = session.Search(ends[0], ends[1]);
                if (search == null) continue;
                PathState state;
                do state = search.Run(64); while (state == PathState.Running);
                var points = search.Waypoints();
                foreach (var p in points) foreach (var number in new[] { p.X, p.Y, p.Z }) Add(number);
                Add((uint)state); Add(search.Cost());
                if (steps == 0 && points.Length > 0)
                    Console.WriteLine("walked {0} steps, cost {1:F3}", points.Length, search.Cost());
                steps += points.Length;
                search.Dispose();
            }
            Console.WriteLine("digest {0:x16}", digest);
        }
    }
}
