//! The navigation runtime for Rust, over the C library: see zuno.h for what each call does and
//! costs. Failures are `Error`s; what is not there is `None`. Objects free what they hold when they
//! are dropped, and borrow what they live in. None of them leaves its thread, but `Mesh`.
use std::ffi::{CStr, CString};
use std::marker::PhantomData;
use std::os::raw::{c_char, c_void};
use std::ptr::{null, null_mut};

#[repr(C)]
#[derive(Clone, Copy, Debug, Default, PartialEq)]
pub struct Point { pub x: f32, pub y: f32, pub z: f32 }
#[repr(C)]
#[derive(Clone, Copy, Debug, Default, PartialEq)]
pub struct Point2 { pub x: f32, pub y: f32 }
#[repr(C)]
#[derive(Clone, Copy, Debug, Default)]
pub struct Place { pub node: u32, pub position: Point }
#[repr(C)]
#[derive(Clone, Copy, Debug, Default)]
pub struct Memory {
    size: u32,
    pub is_recording: i32,
    pub allocations: u64, pub frees: u64, pub blocks: u64, pub bytes: u64, pub peak_bytes: u64,
}
#[repr(C)]
#[derive(Clone, Copy, Debug, Default)]
pub struct Answer {
    size: u32,
    /// FOUND, NO_PATH or OFF_MESH
    pub result: i32,
    pub start: Point,
    pub goal: Point,
    pub cost: f32,
    pub frames_waited: u32,
    pub expansions: u64,
    pub is_late: i32,
    pub waypoint_count: u32,
}
#[repr(C)]
#[derive(Clone, Copy, Debug, Default)]
pub struct CorridorState { size: u32, pub position: Place, pub goal: Place, pub has_path: i32, pub needs_search: i32 }

pub const FOUND: i32 = 0;
pub const RUNNING: i32 = 1;
pub const NO_PATH: i32 = 2;
pub const OFF_MESH: i32 = 3;
#[derive(Clone, Copy)]
pub enum Priority { Urgent, Normal, Background }
#[derive(Clone, Copy)]
pub enum Form { Plain, Improved }

/// A failure: its status, its text, and the exception's class in the library, or "".
#[derive(Debug)]
pub struct Error { pub status: i32, pub text: String, pub class: String }
impl std::fmt::Display for Error {
    fn fmt(&self, out: &mut std::fmt::Formatter) -> std::fmt::Result { out.write_str(&self.text) }
}
impl std::error::Error for Error {}
pub type Result<T> = std::result::Result<T, Error>;

#[repr(C)]
struct RawError { size: u32, status: i32, text: *const c_char, class: *const c_char, parameters: *const c_void, count: u32 }
#[repr(C)]
struct RawSettings { size: u32, base_folder: *const c_char, recording: *const c_char, memory: *const c_void, files: *const c_void }
#[repr(C)]
struct RawRequest { size: u32, priority: i32, start: Point, goal: Point, deadline: u32 }
type Handle = *mut c_void;

#[link(name = "zunoc")]
extern "C" {
    fn zuno_check_version(header: u32, library: *mut u32) -> i32;
    fn zuno_last_error(error: *mut RawError) -> i32;
    fn zuno_start(settings: *const RawSettings, mesh: *const c_char, session: *mut Handle) -> i32;
    fn zuno_close(session: Handle, left: *mut Memory) -> i32;
    fn zuno_memory_figures(session: Handle, figures: *mut Memory) -> i32;
    fn zuno_destroy(handle: Handle) -> i32;
    fn zuno_bounds(session: Handle, low: *mut Point2, high: *mut Point2) -> i32;
    fn zuno_is_blocked(session: Handle, x: f32, y: f32, blocked: *mut i32) -> i32;
    fn zuno_ground_height(session: Handle, x: f32, y: f32, height: *mut f32) -> i32;
    fn zuno_trace_ray(session: Handle, from_x: f32, from_y: f32, to_x: f32, to_y: f32, distance: *mut f32) -> i32;
    fn zuno_search_open(session: Handle, start: &Point, goal: &Point, search: *mut Handle) -> i32;
    fn zuno_search_run(search: Handle, budget: u32, state: *mut i32) -> i32;
    fn zuno_search_waypoints(search: Handle, points: *mut Point, count: *mut u32) -> i32;
    fn zuno_search_cost(search: Handle, cost: *mut f32) -> i32;
    fn zuno_scheduler_create(session: Handle, settings: *const c_void, scheduler: *mut Handle) -> i32;
    fn zuno_scheduler_add(scheduler: Handle, request: *const RawRequest, id: *mut u64) -> i32;
    fn zuno_scheduler_cancel(scheduler: Handle, id: u64) -> i32;
    fn zuno_scheduler_advance(scheduler: Handle, expansions: u64, nanoseconds: u64) -> i32;
    fn zuno_scheduler_take(scheduler: Handle, id: u64, answer: *mut Answer, waypoints: *mut Point, count: *mut u32) -> i32;
    fn zuno_mesh_load(session: Handle, name: *const c_char, mesh: *mut Handle) -> i32;
    fn zuno_mesh_outline(mesh: Handle, node: u32, points: *mut Point, count: *mut u32) -> i32;
    fn zuno_mesh_ground(mesh: Handle, at: &Point, height: f32, place: *mut Place) -> i32;
    fn zuno_mesh_nearest(mesh: Handle, at: &Point, radius: f32, height: f32, place: *mut Place, distance: *mut f32) -> i32;
    fn zuno_mesh_random(mesh: Handle, seed: u64, place: *mut Place) -> i32;
    fn zuno_mesh_move(mesh: Handle, from: &Place, target: &Point, end: *mut Place) -> i32;
    fn zuno_mesh_explain(mesh: Handle, start: &Point, goal: &Point, answer: *mut i32, text: *mut u8, size: *mut u32) -> i32;
    fn zuno_path_create(mesh: Handle, path: *mut Handle) -> i32;
    fn zuno_path_straighten(path: Handle, start: &Point, goal: &Point, waypoints: *const Point, count: u32, form: i32) -> i32;
    fn zuno_path_corners(path: Handle, corners: *mut Point, count: *mut u32, length: *mut f64) -> i32;
    fn zuno_corridor_create(mesh: Handle, at: &Place, corridor: *mut Handle) -> i32;
    fn zuno_corridor_follow(corridor: Handle, path: Handle) -> i32;
    fn zuno_corridor_next(corridor: Handle, reached: f32, corner: *mut Point) -> i32;
    fn zuno_corridor_move(corridor: Handle, target: &Point) -> i32;
    fn zuno_corridor_look(corridor: Handle, state: *mut CorridorState) -> i32;
}

fn size_of<T>() -> u32 { std::mem::size_of::<T>() as u32 }

/// Whether what was asked for is there.
fn check(status: i32) -> Result<bool> {
    if status >= 0 {
        return Ok(status == 0);
    }
    let text = |text: *const c_char| unsafe { CStr::from_ptr(text) }.to_string_lossy().into_owned();
    let mut e = RawError { size: size_of::<RawError>(), status, text: null(), class: null(), parameters: null(), count: 0 };
    unsafe { zuno_last_error(&mut e) };
    Err(Error { status: e.status, text: text(e.text), class: text(e.class) })
}

/// What a call puts in its place, if it is there.
fn value<T>(mut place: T, call: impl FnOnce(&mut T) -> i32) -> Result<Option<T>> {
    Ok(if check(call(&mut place))? { Some(place) } else { None })
}
fn always<T>(mut place: T, call: impl FnOnce(&mut T) -> i32) -> Result<T> {
    check(call(&mut place))?;
    Ok(place)
}

/// An array, by the rule for arrays: the call is asked for the number, then for all.
fn list<T: Clone + Default>(call: impl Fn(*mut T, &mut u32) -> i32) -> Result<Vec<T>> {
    let mut count = 0;
    check(call(null_mut(), &mut count))?;
    let mut items = vec![T::default(); count as usize];
    check(call(items.as_mut_ptr(), &mut count))?;
    Ok(items)
}

fn text(text: &str) -> Result<CString> {
    CString::new(text).map_err(|_| Error { status: -1, text: "a text with a zero".into(), class: String::new() })
}

struct Owned(Handle);
impl Drop for Owned {
    fn drop(&mut self) { unsafe { zuno_destroy(self.0) }; }
}

/// A running world.
pub struct Session(Handle);
impl Drop for Session {
    fn drop(&mut self) { unsafe { zuno_close(self.0, null_mut()) }; }
}
impl Session {
    pub fn start(mesh: &str) -> Result<Session> { Session::start_with(mesh, None, None) }
    pub fn start_with(mesh: &str, base_folder: Option<&str>, recording: Option<&str>) -> Result<Session> {
        check(unsafe { zuno_check_version(10000, null_mut()) })?;
        let (mesh, base, record) = (text(mesh)?, base_folder.map(text).transpose()?, recording.map(text).transpose()?);
        let pointer = |text: &Option<CString>| text.as_ref().map_or(null(), |text| text.as_ptr());
        let settings = RawSettings { size: size_of::<RawSettings>(), base_folder: pointer(&base), recording: pointer(&record), memory: null(), files: null() };
        always(null_mut(), |session| unsafe { zuno_start(&settings, mesh.as_ptr(), session) }).map(Session)
    }
    pub fn memory(&self) -> Result<Memory> {
        always(Memory { size: size_of::<Memory>(), ..Default::default() }, |figures| unsafe { zuno_memory_figures(self.0, figures) })
    }
    pub fn bounds(&self) -> Result<(Point2, Point2)> {
        always(Default::default(), |(low, high)| unsafe { zuno_bounds(self.0, low, high) })
    }
    pub fn is_blocked(&self, x: f32, y: f32) -> Result<bool> {
        Ok(always(0, |blocked| unsafe { zuno_is_blocked(self.0, x, y, blocked) })? != 0)
    }
    pub fn ground_height(&self, x: f32, y: f32) -> Result<Option<f32>> {
        value(0.0, |height| unsafe { zuno_ground_height(self.0, x, y, height) })
    }
    pub fn trace_ray(&self, from: Point2, to: Point2) -> Result<Option<f32>> {
        value(0.0, |distance| unsafe { zuno_trace_ray(self.0, from.x, from.y, to.x, to.y, distance) })
    }
    /// None when a point stands on no node.
    pub fn search(&self, start: &Point, goal: &Point) -> Result<Option<Search<'_>>> {
        let search = value(null_mut(), |search| unsafe { zuno_search_open(self.0, start, goal, search) })?;
        Ok(search.map(|handle| Search(Owned(handle), PhantomData)))
    }
    pub fn scheduler(&self) -> Result<Scheduler<'_>> {
        let made = always(null_mut(), |scheduler| unsafe { zuno_scheduler_create(self.0, null(), scheduler) })?;
        Ok(Scheduler(Owned(made), PhantomData))
    }
}

pub struct Search<'a>(Owned, PhantomData<&'a Session>);
impl Search<'_> {
    pub fn run(&self, budget: u32) -> Result<i32> { always(0, |state| unsafe { zuno_search_run(self.0 .0, budget, state) }) }
    /// The next waypoints, at most so many.
    pub fn waypoints(&self, most: u32) -> Result<Vec<Point>> {
        let (mut points, mut count) = (vec![Point::default(); most as usize], most);
        check(unsafe { zuno_search_waypoints(self.0 .0, points.as_mut_ptr(), &mut count) })?;
        points.truncate(count as usize);
        Ok(points)
    }
    pub fn cost(&self) -> Result<f32> { always(0.0, |cost| unsafe { zuno_search_cost(self.0 .0, cost) }) }
}

pub struct Scheduler<'a>(Owned, PhantomData<&'a Session>);
impl Scheduler<'_> {
    pub fn add(&self, start: Point, goal: Point, priority: Priority, deadline: u32) -> Result<u64> {
        let request = RawRequest { size: size_of::<RawRequest>(), priority: priority as i32, start, goal, deadline };
        always(0, |id| unsafe { zuno_scheduler_add(self.0 .0, &request, id) })
    }
    pub fn cancel(&self, id: u64) -> Result<bool> { check(unsafe { zuno_scheduler_cancel(self.0 .0, id) }) }
    /// u64::MAX: no limit.
    pub fn advance(&self, expansions: u64, nanoseconds: u64) -> Result<bool> {
        check(unsafe { zuno_scheduler_advance(self.0 .0, expansions, nanoseconds) })
    }
    /// An answer and its waypoints; None while the request is open.
    pub fn take(&self, id: u64) -> Result<Option<(Answer, Vec<Point>)>> {
        let mut answer = Answer { size: size_of::<Answer>(), ..Default::default() };
        let mut count = 0;
        if !check(unsafe { zuno_scheduler_take(self.0 .0, id, &mut answer, null_mut(), &mut count) })? {
            return Ok(None);
        }
        let mut points = vec![Point::default(); count as usize];
        check(unsafe { zuno_scheduler_take(self.0 .0, id, &mut answer, points.as_mut_ptr(), &mut count) })?;
        Ok(Some((answer, points)))
    }
}

/// The ground, without a world.
pub struct Mesh(Owned);
unsafe impl Send for Mesh {}
unsafe impl Sync for Mesh {}
impl Mesh {
    /// Through the C library's files; on the thread that uses the session.
    pub fn load(name: &str) -> Result<Mesh> {
        let name = text(name)?;
        always(null_mut(), |mesh| unsafe { zuno_mesh_load(null_mut(), name.as_ptr(), mesh) }).map(|mesh| Mesh(Owned(mesh)))
    }
    pub fn outline(&self, node: u32) -> Result<Vec<Point>> {
        list(|points, count| unsafe { zuno_mesh_outline(self.0 .0, node, points, count) })
    }
    pub fn ground(&self, at: &Point, height: f32) -> Result<Option<Place>> {
        value(Place::default(), |place| unsafe { zuno_mesh_ground(self.0 .0, at, height, place) })
    }
    pub fn nearest(&self, at: &Point, radius: f32, height: f32) -> Result<Option<Place>> {
        value(Place::default(), |place| unsafe { zuno_mesh_nearest(self.0 .0, at, radius, height, place, null_mut()) })
    }
    pub fn random(&self, seed: u64) -> Result<Option<Place>> {
        value(Place::default(), |place| unsafe { zuno_mesh_random(self.0 .0, seed, place) })
    }
    pub fn step(&self, from: &Place, target: &Point) -> Result<Place> {
        always(Place::default(), |end| unsafe { zuno_mesh_move(self.0 .0, from, target, end) })
    }
    /// Whole sentences on why there is, or isn't, a path.
    pub fn explain(&self, start: &Point, goal: &Point) -> Result<String> {
        let mut answer = 0;
        let pointer = &mut answer as *mut i32;
        let mut bytes = list(|text, size| unsafe { zuno_mesh_explain(self.0 .0, start, goal, pointer, text, size) })?;
        bytes.pop();
        Ok(String::from_utf8_lossy(&bytes).into_owned())
    }
    pub fn path(&self) -> Result<Path> {
        always(null_mut(), |path| unsafe { zuno_path_create(self.0 .0, path) }).map(|path| Path(Owned(path)))
    }
    pub fn corridor(&self, at: &Place) -> Result<Corridor> {
        always(null_mut(), |made| unsafe { zuno_corridor_create(self.0 .0, at, made) }).map(|made| Corridor(Owned(made)))
    }
}

/// A path from corner to corner.
pub struct Path(Owned);
impl Path {
    pub fn straighten(&mut self, start: &Point, goal: &Point, waypoints: &[Point], form: Form) -> Result<bool> {
        let count = waypoints.len() as u32;
        check(unsafe { zuno_path_straighten(self.0 .0, start, goal, waypoints.as_ptr(), count, form as i32) })
    }
    pub fn corners(&self) -> Result<Vec<Point>> {
        list(|corners, count| unsafe { zuno_path_corners(self.0 .0, corners, count, null_mut()) })
    }
}

/// A character that walks.
pub struct Corridor(Owned);
impl Corridor {
    pub fn follow(&mut self, path: &Path) -> Result<bool> { check(unsafe { zuno_corridor_follow(self.0 .0, path.0 .0) }) }
    pub fn next(&mut self, reached: f32) -> Result<Point> {
        always(Point::default(), |corner| unsafe { zuno_corridor_next(self.0 .0, reached, corner) })
    }
    pub fn step(&mut self, target: &Point) -> Result<bool> { check(unsafe { zuno_corridor_move(self.0 .0, target) }) }
    pub fn state(&self) -> Result<CorridorState> {
        always(CorridorState { size: size_of::<CorridorState>(), ..Default::default() }, |state| unsafe { zuno_corridor_look(self.0 .0, state) })
    }
}
