-- Sends messages to the filter and prints what it answers.

mt.startfilter(program, socket, "3", "application/x-msdownload", "Text/X-Forbidden")

local function connected()
    local conn = mt.connect(socket, 100, 0.05)
    if conn == nil then error("no connection") end
    return conn -- the filter asks neither for the name of the client nor for recipients
end

-- Begins a message: sends its fields, pairs of name and value.
local function begin(conn, fields)
    mt.mailfrom(conn, "<ada@example.org>")
    for _, field in ipairs(fields) do mt.header(conn, field[1], field[2]) end
    mt.eoh(conn)
end

-- Ends a message and prints what the filter says of it.
local function finish(conn, what)
    mt.eom(conn)
    local reply = mt.getreply(conn)
    local said = "another reply: " .. reply
    if reply == SMFIR_CONTINUE or reply == SMFIR_ACCEPT then said = "accepted" end
    if reply == SMFIR_REPLYCODE then
        said = "rejected"
        for _, text in ipairs({"too many parts", "a part of a forbidden type"}) do
            if mt.eom_check(conn, MT_SMTPREPLY, "554", "5.7.1", text) then
                said = said .. ": 554 5.7.1 " .. text
            end
        end
    end
    for parts = 0, 5 do
        if mt.eom_check(conn, MT_HDRADD, "X-Parts", tostring(parts)) then
            said = said .. ", X-Parts: " .. parts
        end
    end
    mt.echo(what .. ": " .. said)
end

-- Sends the body in chunks of that many bytes.
local function send(conn, body, size)
    for first = 1, #body, size do mt.bodystring(conn, body:sub(first, first + size - 1)) end
end

local mixed = {"Content-Type", "multipart/mixed;\n\tboundary=XY"}

local function parts(...)
    local body = ""
    for _, field in ipairs({...}) do
        body = body .. "--XY\r\nContent-Type: " .. field .. "\r\n\r\nhello\r\n"
    end
    return body .. "--XY--\r\n"
end

local function talk()
    local conn = connected()

    begin(conn, {{"Subject", "hello"}})
    mt.bodystring(conn, "plain text\r\n")
    finish(conn, "plain message")

    begin(conn, {{"Subject", "no body"}})
    finish(conn, "message without a body")

    for _, size in ipairs({1, 7, 1000}) do
        begin(conn, {mixed})
        send(conn, parts("text/plain", "image/png", "text/html"), size)
        finish(conn, "three parts in chunks of " .. size)

        begin(conn, {mixed})
        send(conn, parts("text/plain", "image/png", "text/html", "text/css"), size)
        finish(conn, "four parts in chunks of " .. size)

        begin(conn, {mixed})
        send(conn, parts("text/plain", "APPLICATION/X-MSDownload; name=run.exe"), size)
        finish(conn, "a program in chunks of " .. size)
    end

    begin(conn, {{"Content-Type", "text/x-forbidden"}})
    mt.bodystring(conn, "x\r\n")
    finish(conn, "message that is itself of a forbidden type")

    begin(conn, {{"Content-Type", "text/x-forbidden-not"}})
    mt.bodystring(conn, "x\r\n")
    finish(conn, "type that begins with a forbidden one")

    begin(conn, {{"Content-Type", "message/rfc822"}})
    send(conn, "Content-Type: multipart/mixed; boundary=XY\r\n\r\n"
        .. parts("text/plain", "application/x-msdownload"), 10)
    finish(conn, "forwarded message with a program")

    -- The server gives a message up, and another one follows on the same connection.
    begin(conn, {mixed})
    send(conn, "--XY\r\nContent-Type: application/x-msd", 10)
    mt.abort(conn)
    begin(conn, {mixed})
    send(conn, parts("text/plain", "text/html"), 10)
    finish(conn, "message after one that was given up")

    -- Two connections at once, whose chunks come in turn.
    local other = connected()
    begin(conn, {mixed})
    begin(other, {mixed})
    local one, two = parts("text/plain"), parts("text/plain", "application/x-msdownload")
    for first = 1, math.max(#one, #two), 9 do
        if first <= #one then mt.bodystring(conn, one:sub(first, first + 8)) end
        if first <= #two then mt.bodystring(other, two:sub(first, first + 8)) end
    end
    finish(other, "second connection")
    finish(conn, "first connection")

    -- The server goes away in the middle of a message.
    begin(other, {mixed})
    send(other, "--XY\r\nhalf", 4)
    mt.disconnect(other, false)

    begin(conn, {{"Subject", "long"}})
    for _ = 1, 64 do mt.bodystring(conn, string.rep("x", 60000)) end
    finish(conn, "line of 3840000 bytes")
    mt.disconnect(conn)
end

local done, problem = pcall(talk) -- miltertest does not print an error
if not done then
    mt.echo("broken off: " .. tostring(problem))
    os.exit(1)
end
