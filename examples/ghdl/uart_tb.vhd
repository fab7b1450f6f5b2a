-- SPDX-License-Identifier: Apache-2.0
-- Sends bytes through the serial port and back over a line that drops out for a moment, and checks
-- what returns.
library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use std.env.finish;

entity tb is
end entity;

architecture test of tb is
    signal clk       : std_logic := '0';
    signal reset     : std_logic := '1';
    signal selected  : std_logic := '0';
    signal write     : std_logic := '0';
    signal address   : std_logic_vector(1 downto 0) := "00";
    signal value     : std_logic_vector(7 downto 0);
    signal drop_out  : std_logic := '0';
    signal data_bus  : std_logic_vector(7 downto 0);
    signal interrupt : std_logic;
    signal txd, rxd  : std_logic;
begin
    clk      <= not clk after 5 ns;
    data_bus <= value when write = '1' else (others => 'Z');
    rxd      <= 'X' when drop_out = '1' else txd;

    -- The line is unknown for a moment while it idles at 1: a glitch, not a toggle.
    drop_out <= '1' after 3002 ns, '0' after 3004 ns;

    dut : entity work.uart
        port map (clk => clk, reset => reset, selected => selected, write => write,
                  address => address, data_bus => data_bus, interrupt => interrupt, rxd => rxd,
                  txd => txd);

    process
        variable seed     : std_logic_vector(7 downto 0) := x"5a";
        variable received : natural := 0;

        procedure store(at : std_logic_vector(1 downto 0); byte : std_logic_vector(7 downto 0)) is
        begin
            wait until falling_edge(clk);
            selected <= '1';
            write    <= '1';
            address  <= at;
            value    <= byte;
            wait until rising_edge(clk);
            wait for 1 ns;
            selected <= '0';
            write    <= '0';
        end procedure;
    begin
        for i in 1 to 4 loop
            wait until rising_edge(clk);
        end loop;
        wait for 1 ns;
        reset <= '0';
        wait for 4000 ns;
        store("10", x"01");
        for i in 1 to 12 loop
            store("00", seed);
            wait until interrupt = '1';
            wait until falling_edge(clk);
            selected <= '1';
            wait for 2 ns;
            if data_bus = seed then
                received := received + 1;
            else
                report "sent " & to_hstring(seed) & ", received " & to_hstring(data_bus);
            end if;
            wait until rising_edge(clk);
            wait for 1 ns;
            selected <= '0';
            seed := seed(6 downto 0) & (seed(7) xor seed(5) xor seed(4) xor seed(3));
        end loop;
        report integer'image(received) & " of 12 bytes came back";
        wait for 500 ns;
        finish;
    end process;
end architecture;
