function love.conf(t)
    t.identity = "zuno"
    t.window.title = "zunopathfinder: click to send fifty characters"
    t.window.width, t.window.height = 1050, 900
    t.window.vsync = 1
    t.modules.audio, t.modules.joystick, t.modules.physics, t.modules.sound = false, false, false, false
end
