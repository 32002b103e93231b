//! Walks a path, asks 12,000 questions and prints the digest of the answers: host MESH
use zuno::{Point, Point2, Session, RUNNING};

fn between(seed: &mut u32, low: f32, high: f32) -> f32 {
    *seed = seed.wrapping_mul(1664525).wrapping_add(1013904223);
    low + (high - low) * ((*seed >> 16) as f32 / 65536.0)
}

fn main() -> Result<(), Box<dyn std::error::Error>> {
    let mut digest: u64 = 0xCBF29CE484222325; // FNV-1a over words of 32 bits
    let mut add = |words: &[u32]| {
        words.iter().for_each(|word| digest = (digest ^ *word as u64).wrapping_mul(0x100000001B3))
    };
    let bits = |p: &Point| [p.x.to_bits(), p.y.to_bits(), p.z.to_bits()];
    let session = Session::start(&std::env::args().nth(1).ok_or("which mesh?")?)?;
    let (low, high) = session.bounds()?;
    let (mut seed, mut steps) = (11, 0);
    for _ in 0..3000 {
        let mut ends = [Point::default(); 2];
        for end in &mut ends {
            end.x = between(&mut seed, low.x, high.x);
            end.z = between(&mut seed, low.y, high.y);
            end.y = session.ground_height(end.x, end.z)?.unwrap_or(0.0);
            add(&bits(end));
        }
        let [from, to] = ends.map(|end| Point2 { x: end.x, y: end.z });
        add(&[session.is_blocked(to.x, to.y)? as u32, session.trace_ray(from, to)?.unwrap_or(-1.0).to_bits()]);
        let search = match session.search(&ends[0], &ends[1])? { Some(search) => search, None => continue };
        let mut state = RUNNING;
        while state == RUNNING { state = search.run(64)?; }
        let points = search.waypoints(4096)?;
        points.iter().for_each(|point| add(&bits(point)));
        add(&[state as u32, search.cost()?.to_bits()]);
        if steps == 0 && !points.is_empty() { println!("walked {} steps, cost {:.3}", points.len(), search.cost()?); }
        steps += points.len();
    }
    println!("digest {:016x}", digest);
    Ok(())
}
