"""Walks a path, asks 12,000 questions and prints the digest of the answers: host.py MESH"""
import struct, sys, zuno

digest, seed = 0xCBF29CE484222325, 11

def add(form, *values):  # FNV-1a over words of 32 bits
    global digest
    for word in struct.unpack(f"<{len(form)}I", struct.pack("<" + form, *values)):
        digest = (digest ^ word) * 0x100000001B3 % 2**64

def between(low, high):
    global seed
    seed = (seed * 1664525 + 1013904223) % 2**32
    return low + (high - low) * ((seed >> 16) / 65536)

with zuno.Session(sys.argv[1]) as session:
    low, high = session.bounds()
    steps = 0  # of the first path
    for i in range(3000):
        ends = [zuno.Point(between(low.x, high.x), 0, between(low.y, high.y)) for _ in range(2)]
        for end in ends:
            end.y = session.ground_height(end.x, end.z) or 0
            add("fff", end.x, end.y, end.z)
        start, goal = ends
        hit = session.trace_ray(start.x, start.z, goal.x, goal.z)
        add("if", session.is_blocked(goal.x, goal.z), -1 if hit is None else hit)
        search = session.search(start, goal)
        if search is None: continue
        while (state := search.run(64)) == zuno.RUNNING: pass
        waypoints = search.waypoints()
        for point in waypoints:
            add("fff", point.x, point.y, point.z)
        add("if", state, search.cost())
        if steps == 0 and waypoints:
            steps = len(waypoints)
            print(f"walked {steps} steps, cost {search.cost():.3f}")
        search.close()
    print(f"digest {digest:016x}")
